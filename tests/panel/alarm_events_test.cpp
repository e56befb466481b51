// SPDX-License-Identifier: MIT
// What the journal tells of alarms is what they were.
#include "panel/alarms/alarm_events.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::journal;

namespace {

Event eventOf(EventKind kind, int station, std::optional<int> code, const char *text = "",
              Time time = 1000)
{
    Event event;
    event.kind = kind;
    event.station = station;
    event.code = code;
    event.text = QString::fromLatin1(text);
    event.time = time;
    return event;
}

/// The acknowledgement of the only alarm that these events leave.
Event acknowledged(const QVector<Event> &events)
{
    return acknowledgementOf(bookOf(events).list().constFirst(), QStringLiteral("anna"));
}

} // namespace

TEST(AlarmEvents, AFaultComesAndGoes)
{
    const Event came = eventOf(EventKind::Fault, 3, 2);
    const Event went = eventOf(EventKind::Fault, 3, 0, "", 7000);

    const AlarmBook first = bookOf({ came });
    const AlarmBook second = bookOf({ came, went });

    const AlarmKey key { AlarmKind::Fault, 3, 2, {} };
    EXPECT_EQ(first.find(key)->state, AlarmState::Active);
    EXPECT_EQ(second.find(key)->state, AlarmState::Returned);
    EXPECT_EQ(second.find(key)->returned, 7000);
}

TEST(AlarmEvents, AnotherFaultTakesThePlaceOfTheFirst)
{
    const AlarmBook book =
        bookOf({ eventOf(EventKind::Fault, 3, 2), eventOf(EventKind::Fault, 3, 5) });

    EXPECT_EQ(book.find({ AlarmKind::Fault, 3, 2, {} })->state, AlarmState::Returned);
    EXPECT_EQ(book.find({ AlarmKind::Fault, 3, 5, {} })->state, AlarmState::Active);
}

TEST(AlarmEvents, LineStationAndStopHaveTwoEnds)
{
    const AlarmBook book = bookOf({
        eventOf(EventKind::Line, 0, 1, "line down: unplugged"),
        eventOf(EventKind::Station, 4, 1, "station 4 does not answer"),
        eventOf(EventKind::Alarm, 0, {}, "STOP NOT CONFIRMED by station 4: it may still run"),
        eventOf(EventKind::Stop, 0, 1, "STOP NOT CONFIRMED by station 4: it may still run"),
        eventOf(EventKind::Line, 0, 0, "line opened"),
        eventOf(EventKind::Alarm, 0, {}, "all stops confirmed"),
    });

    EXPECT_EQ(book.list().size(), 3);
    EXPECT_EQ(book.find({ AlarmKind::Line, 0, 0, {} })->state, AlarmState::Returned);
    EXPECT_EQ(book.find({ AlarmKind::Line, 0, 0, {} })->reason, QStringLiteral("unplugged"));
    EXPECT_EQ(book.find({ AlarmKind::Station, 4, 0, {} })->state, AlarmState::Active);
    EXPECT_EQ(book.find({ AlarmKind::Stop, 0, 0, {} })->state, AlarmState::Returned);
}

TEST(AlarmEvents, EventsOfAnOlderJournalSayNothing)
{
    const AlarmBook book = bookOf({ eventOf(EventKind::Station, 4, {}, "station 4 does not answer"),
                                    eventOf(EventKind::Write, 4, 1, "rejected") });

    EXPECT_TRUE(book.list().isEmpty());
}

TEST(AlarmEvents, EachKindIsAcknowledgedByItsEvent)
{
    const QVector<Event> causes = {
        eventOf(EventKind::Fault, 3, 2),
        eventOf(EventKind::Line, 0, 1, "line down: unplugged"),
        eventOf(EventKind::Station, 4, 1, "station 4 does not answer"),
        eventOf(EventKind::Stop, 0, 1, "STOP NOT CONFIRMED by station 4: it may still run"),
        eventOf(EventKind::Alarm, 0, {}, "the user interface is silent: stopping"),
    };
    for (const Event &cause : causes) {
        const AlarmBook book = bookOf({ cause, acknowledged({ cause }) });

        EXPECT_EQ(book.unacknowledged(), 0) << kindName(cause.kind).toStdString();
    }
}

TEST(AlarmEvents, AnAcknowledgementLeavesTheOthersAlone)
{
    const Event first = eventOf(EventKind::Fault, 3, 2);

    const AlarmBook book =
        bookOf({ first, eventOf(EventKind::Fault, 4, 2), eventOf(EventKind::Alarm, 0, {}, "fire"),
                 acknowledged({ first }) });

    EXPECT_EQ(book.unacknowledged(), 2);
    EXPECT_EQ(book.find({ AlarmKind::Fault, 3, 2, {} })->state, AlarmState::Acknowledged);
}

TEST(AlarmEvents, TheEventSaysWhoAndWhat)
{
    const Event event = acknowledged({ eventOf(EventKind::Fault, 3, 2) });

    EXPECT_EQ(event.kind, EventKind::Acknowledgement);
    EXPECT_EQ(event.station, 3);
    EXPECT_EQ(event.regType, QStringLiteral("FU"));
    EXPECT_EQ(event.code, 2);
    EXPECT_EQ(event.before, 1);
    EXPECT_EQ(event.text.toStdString(), "acknowledged by anna: station 3: fault 2");
}

TEST(AlarmEvents, AreThoseOfOneLineBeforeAMoment)
{
    const EventQuery query = alarmEvents(QStringLiteral("a"), 5000);

    EXPECT_EQ(query.line, QStringLiteral("a"));
    EXPECT_EQ(query.window.to, 5000);
    EXPECT_EQ(query.most, 5000);
    EXPECT_EQ(query.kinds.size(), 6);
}
