// SPDX-License-Identifier: MIT
// A panel with alarms and a history that a test makes up.
#include "alarm_fixture.h"

using namespace dx4::panel;
using namespace dx4::journal;
using std::chrono::minutes;
using std::chrono::seconds;

Event historyEvent(qint64 id, EventKind kind, int station, const char *text, Time time)
{
    Event event;
    event.id = id;
    event.kind = kind;
    event.station = station;
    event.text = QString::fromUtf8(text);
    event.time = time;
    return event;
}

AlarmPanel::AlarmPanel(QSize size, bool hasJournal)
    : panel(3, size)
    , words(panel.made.config)
    , watch({ panel.made.port().snapshot,
              [this](const Event &event) { noted.push_back(event); },
              panel.made.clock().utc,
              QStringLiteral("anna"),
              { 1, 2, 3 } })
    , page(new AlarmsPage(port(hasJournal)))
    , banner(new AlarmBanner(watch, words, port(hasJournal).now))
{
    panel.window.addPage(page, QStringLiteral("Alarms"));
    panel.window.setBanner(banner);
    // The layout shows its new widgets with its next event.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    QObject::connect(banner, &AlarmBanner::tapped, &panel.window, [this] { openAlarms(); });
}

AlarmsPort AlarmPanel::port(bool hasJournal)
{
    AlarmsPort port;
    port.watch = &watch;
    port.now = [clock = panel.made.clock()] { return clock.utc().toMSecsSinceEpoch(); };
    port.words = words;
    port.stations = { 1, 2, 3 };
    if (!hasJournal)
        return port;
    port.read = [this](const EventQuery &query, std::function<void(const EventsRead &)> then) {
        asked.push_back(query);
        answer = std::move(then);
    };
    port.save = [this](const EventQuery &query, const QString &file, bool replace,
                       std::function<void(const SaveEnd &)> then) {
        asked.push_back(query);
        savedAs.push_back(file);
        mayReplace = replace;
        saved = std::move(then);
    };
    return port;
}

void AlarmPanel::show()
{
    panel.show();
}

void AlarmPanel::openAlarms()
{
    panel.window.openPage(1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

void AlarmPanel::raiseSome()
{
    MadeUpLine &made = panel.made;
    made.readRunning(1);
    made.readStanding(2);
    made.readStanding(3);
    made.read(3, "FU", 0, 2);
    show();
    watch.acknowledge({ { AlarmKind::Fault, 3, 2, {} } });
    made.advance(minutes(4));
    made.readRunning(1);
    made.read(2, "FU", 0, 1);
    show();
    made.advance(seconds(75));
    made.read(2, "FU", 0, 0);
    made.next.lostStations = { 1 };
    show();
    made.advance(seconds(20));
    watch.noteAlarm(QStringLiteral("the user interface is silent: stopping"));
    made.readStanding(2);
    show();
}

void AlarmPanel::giveHistory(int count)
{
    const EventKind kinds[] = { EventKind::Fault, EventKind::Acknowledgement, EventKind::Write,
                                EventKind::Station };
    const char *texts[] = { "station 3: fault 2, overvoltage; status word 0x0008: tripped",
                            "acknowledged by anna: station 3: fault 2",
                            "station 3, CW 0 (0x1001): confirmed", "station 3 does not answer" };
    EventsRead read;
    for (int i = 0; i < count; ++i)
        read.events.append(
            historyEvent(1000 - i, kinds[i % 4], 3, texts[i % 4], panelNoon - i * 60'000));
    answer(read);
}
