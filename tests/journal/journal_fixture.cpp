// SPDX-License-Identifier: MIT
// A journal in a folder of its own.
#include "journal_fixture.h"

#include <QDir>

using namespace dx4::journal;

Event eventOf(const char *text, Time time, EventKind kind)
{
    Event event;
    event.start = 1;
    event.time = time;
    event.kind = kind;
    event.line = QStringLiteral("a");
    event.text = QString::fromUtf8(text);
    return event;
}

Series seriesOf(int address)
{
    Series series;
    series.at = { QStringLiteral("a"), 1, QStringLiteral("D"), address };
    return series;
}

Sample sampleOf(int value, Time time, int address)
{
    Sample sample;
    sample.series = seriesOf(address);
    sample.start = 1;
    sample.time = time;
    sample.lowest = value;
    sample.highest = value;
    sample.last = value;
    sample.count = 1;
    return sample;
}

void JournalTest::open(const JournalSettings &settings)
{
    journal.reset();
    journal = Journal::open(path, settings, &trouble, &setAsideAs);
}

bool JournalTest::write(const Batch &batch)
{
    return journal->write(batch, &trouble);
}

bool JournalTest::writeEvents(const std::vector<Event> &events)
{
    return write({ events, {}, {} });
}

bool JournalTest::writeSamples(const std::vector<Sample> &samples)
{
    return write({ {}, samples, {} });
}

std::unique_ptr<JournalReader> JournalTest::reader() const
{
    Trouble why;
    auto opened = JournalReader::open(path, &why);
    EXPECT_TRUE(opened) << why.text.toStdString();
    return opened;
}

QVector<Event> JournalTest::events(const EventQuery &query) const
{
    const auto from = reader();
    const auto found = from ? from->events(query) : std::nullopt;
    EXPECT_TRUE(found);
    return found.value_or(QVector<Event>());
}

Texts JournalTest::texts(EventQuery query) const
{
    query.isOldestFirst = true;
    Texts found;
    const QVector<Event> all = events(query);
    for (const Event &event : all)
        found.push_back(event.text.toStdString());
    return found;
}

Texts JournalTest::history(Time from, Time to, int mostRows, int address) const
{
    const auto of = reader();
    const auto history = of->history({ seriesOf(address).at, { from, to }, mostRows });
    EXPECT_TRUE(history);
    Texts rows;
    for (const HistoryPoint &point : history->points)
        rows.push_back(QStringLiteral("%1: %2 to %3, %4 (%5)%6")
                           .arg((point.time - noon) / 1000)
                           .arg(point.lowest)
                           .arg(point.highest)
                           .arg(point.last)
                           .arg(point.count)
                           .arg(point.quality == Quality::Good ? QString() : QStringLiteral(" bad"))
                           .toStdString());
    return rows;
}

qint64 JournalTest::number(const char *sql) const
{
    Database database(path, Database::Access::Read, 1000);
    return database.number(QString::fromLatin1(sql)).value_or(-1);
}

void JournalTest::execute(const char *sql) const
{
    Database database(path, Database::Access::Write, 1000);
    EXPECT_TRUE(database.run(QString::fromLatin1(sql))) << database.trouble().text.toStdString();
}

QStringList JournalTest::files() const
{
    return QDir(folder.path()).entryList(QDir::Files, QDir::Name);
}
