// SPDX-License-Identifier: MIT
// Parameters of drives that a test makes up.
#include "parameters_fixture.h"

#include "host/link/notation.h"
#include "journal/journal.h"
#include "panel/widgets/hold_button.h"

#include <QTest>

using namespace dx4;
using namespace dx4::host;

namespace {

journal::Event parameterEvent(int station, int address, int before, int after, journal::Time time)
{
    journal::Event event;
    event.start = 1;
    event.time = time;
    event.kind = journal::EventKind::Parameter;
    event.line = QStringLiteral("main");
    event.station = station;
    event.regType = QStringLiteral("F");
    event.address = address;
    event.code = 0;
    event.before = before;
    event.after = after;
    event.text = QStringLiteral("station %1, %2: %3 to %4, confirmed")
                     .arg(station)
                     .arg(fullAddress(QStringLiteral("F"), address))
                     .arg(before)
                     .arg(after);
    return event;
}

} // namespace

Config withParameterNames(Config config)
{
    const auto add = [&config](const char *place, const char *name, const char *unit, double factor,
                               int decimals) {
        RegisterConfig named;
        named.at = QString::fromLatin1(place);
        named.name = QString::fromLatin1(name);
        named.scaling.unit = QString::fromLatin1(unit);
        named.scaling.factor = factor;
        named.scaling.decimals = decimals;
        config.stations[0].registers.append(named);
    };
    add("F 0.1", "highest frequency", "Hz", 0.01, 2);
    add("F 8.2", "acceleration time", "s", 0.1, 1);
    add("F c.13", "brake chopper level", "V", 1.0, 0);
    return config;
}

panel::ParameterPort MadeUpJobs::port()
{
    return { [this](const ParameterSet &begun) {
                backups.push_back(begun);
                return isClosed ? 0 : static_cast<int>(backups.size());
            },
             [this](int station, const ParameterSet &set) {
                 restores.push_back({ station, set });
                 return isClosed ? 0 : 500 + static_cast<int>(restores.size());
             },
             [this](int id) { cancelled.push_back(id); } };
}

ParameterSet factorySet(int station)
{
    ParameterSet set;
    set.station = station;
    for (int address : allParameters())
        set.values.insert(address, static_cast<quint16>(address % 256));
    return set;
}

ParameterSet tunedSet(int station)
{
    ParameterSet set = factorySet(station);
    set.values[at(0, 1)] = 5000;
    set.values[at(1, 3)] = 12;
    set.values[at(4, 28)] = 7;
    set.values[at(8, 2)] = 120;
    set.values[at(10, 13)] = 680;
    set.values.remove(at(8, 4));
    set.values.remove(at(8, 5));
    set.refused = { at(8, 4), at(8, 5) };
    return set;
}

WriteOutcome wrote(int station, int address, quint16 value)
{
    WriteOutcome outcome = ended(7, WriteEnd::Confirmed, "", station);
    outcome.wish.regType = QStringLiteral("F");
    outcome.wish.address = address;
    outcome.wish.values = { value };
    return outcome;
}

void writeJournal(const QString &path)
{
    constexpr journal::Time noon = 1'772'366'400'000; // 2026-03-01, 12:00 UTC
    journal::Batch batch;
    batch.events = { parameterEvent(1, at(8, 2), 50, 80, noon),
                     parameterEvent(1, at(8, 2), 80, 100, noon + 60'000),
                     parameterEvent(2, at(0, 1), 1, 2, noon + 70'000),
                     parameterEvent(1, at(8, 2), 100, 120, noon + 120'000) };
    for (const journal::Event &event : batch.events) {
        const journal::RegisterKey key { event.line, event.station, event.regType, event.address };
        journal::WearCount &wear = batch.wear[key];
        wear.at = key;
        ++wear.writes;
        wear.last = event.time;
    }
    journal::Trouble trouble;
    const auto journal = journal::Journal::open(path, {}, &trouble);
    if (!journal || !journal->write(batch, &trouble))
        qFatal("%s", qPrintable(trouble.text));
}

MadeUpParameters::MadeUpParameters(bool hasJournal)
    : book(jobs.port(), withParameterNames(made.config), made.clock())
    , restore(book, [this](int) { return standing; })
    , journal([](const panel::Work &work) { work()(); },
              { hasJournal ? folder.filePath(QStringLiteral("journal.sqlite")) : QString(),
                QStringLiteral("main") })
    , table(book, journal)
{
    if (hasJournal)
        writeJournal(folder.filePath(QStringLiteral("journal.sqlite")));
    QObject::connect(&book, &panel::ParameterBook::failed, &book,
                     [this](const QString &text) { failures.push_back(text.toStdString()); });
}

void MadeUpParameters::read(int id, const ParameterSet &set, const char *error)
{
    book.read();
    book.noteBackedUp(id, set, QString::fromLatin1(error));
}

void MadeUpParameters::compare()
{
    book.showFile(panel::ParameterBook::First, folder.filePath(QStringLiteral("drive.txt")),
                  tunedSet(1));
    read(1, factorySet(1));
}

ParametersPanel::ParametersPanel(QSize size, bool hasJournal)
    : panel(3, size)
{
    const QString journal = folder.filePath(QStringLiteral("journal.sqlite"));
    if (hasJournal)
        writeJournal(journal);
    panel::ParametersSetup setup;
    setup.port = jobs.port();
    setup.config = withParameterNames(panel.made.config);
    setup.clock = panel.made.clock();
    setup.standing = [this](int) { return standing; };
    setup.runner = [](const panel::Work &work) { work()(); };
    setup.folder = folder.path();
    setup.journal = { hasJournal ? journal : QString(), QStringLiteral("main") };
    page = new panel::ParametersPage(setup);
    panel.window.addPage(page, QStringLiteral("Parameters"));
    show(); // its button is shown by the loop
    click("Parameters");
    show();
}

void ParametersPanel::show()
{
    panel.show();
    // What a button queued, and the layout of what it opened.
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

void ParametersPanel::compare(int fileStation)
{
    page->book().showFile(panel::ParameterBook::First, folder.filePath(QStringLiteral("drive.txt")),
                          tunedSet(fileStation));
    page->book().read();
    page->book().noteBackedUp(static_cast<int>(jobs.backups.size()), factorySet(1), {});
    show();
}

QAbstractButton *ParametersPanel::button(const char *text) const
{
    for (QAbstractButton *found : panel.window.findChildren<QAbstractButton *>()) {
        if (found->isVisible() && found->text() == QLatin1String(text))
            return found;
    }
    return nullptr;
}

void ParametersPanel::click(const char *text)
{
    QTest::mouseClick(button(text), Qt::LeftButton);
    show();
}

void ParametersPanel::hold(const char *text)
{
    auto *held = static_cast<panel::HoldButton *>(button(text));
    QTest::mousePress(held, Qt::LeftButton);
    for (int i = 0; i < 10; ++i) {
        panel.made.advance(std::chrono::milliseconds(100));
        held->look();
    }
    QTest::mouseRelease(held, Qt::LeftButton);
    show();
}
