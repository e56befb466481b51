// SPDX-License-Identifier: MIT
// What a line tells becomes alarms.
#include "panel/alarms/alarm_events.h"
#include "panel/alarms/alarm_watch.h"
#include "panel_fixture.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using dx4::journal::Event;
using std::chrono::seconds;

namespace {

constexpr qint64 noon = 1'772'366'400'000; // 2026-03-01, 12:00:00 UTC

struct Watched {
    Watched()
        : watch({ made.port().snapshot,
                  [this](const Event &event) { noted.push_back(event); },
                  made.clock().utc,
                  QStringLiteral("anna"),
                  { 1, 2, 3 } })
    {
        QObject::connect(&watch, &AlarmWatch::faultCame, [this](int station, int code) {
            came.push_back({ station, code });
        });
    }

    void look()
    {
        made.publish();
        watch.look();
    }

    const Alarm *fault(int station, int code) const
    {
        return watch.book().find({ AlarmKind::Fault, station, code, {} });
    }
    const Alarm *of(AlarmKind kind, int station = 0) const
    {
        return watch.book().find({ kind, station, 0, {} });
    }

    MadeUpLine made;
    std::vector<Event> noted;
    std::vector<std::pair<int, int>> came;
    AlarmWatch watch;
};

StopReport unconfirmed(const char *text)
{
    return { { 2 }, QString::fromLatin1(text) };
}

} // namespace

TEST(AlarmWatch, AFaultCodeIsAnAlarmUntilItIsZero)
{
    Watched under;
    under.made.readStanding(1);
    under.made.read(1, "FU", 0, 2);

    under.look();
    ASSERT_NE(under.fault(1, 2), nullptr);
    EXPECT_EQ(under.fault(1, 2)->state, AlarmState::Active);
    EXPECT_EQ(under.fault(1, 2)->since, noon);
    EXPECT_EQ(under.came, (std::vector<std::pair<int, int>> { { 1, 2 } }));

    under.made.advance(seconds(3));
    under.made.read(1, "FU", 0, 0);
    under.look();
    EXPECT_EQ(under.fault(1, 2)->state, AlarmState::Returned);
    EXPECT_EQ(under.fault(1, 2)->returned, noon + 3000);
}

TEST(AlarmWatch, AnotherCodeIsAnotherAlarm)
{
    Watched under;
    under.made.read(1, "FU", 0, 2);
    under.look();

    under.made.read(1, "FU", 0, 1);
    under.look();

    EXPECT_EQ(under.fault(1, 2)->state, AlarmState::Returned);
    EXPECT_EQ(under.fault(1, 1)->state, AlarmState::Active);
    EXPECT_EQ(under.came, (std::vector<std::pair<int, int>> { { 1, 2 }, { 1, 1 } }));
}

TEST(AlarmWatch, AnOldCodeNeitherRaisesNorClears)
{
    Watched under;
    under.made.read(1, "FU", 0, 2);
    under.made.find(1, "FU", 0)->state.stale = true;
    under.look();
    EXPECT_EQ(under.fault(1, 2), nullptr);

    under.made.read(1, "FU", 0, 2);
    under.look();
    under.made.read(1, "FU", 0, 0);
    under.made.find(1, "FU", 0)->state.failed = true;
    under.look();
    EXPECT_EQ(under.fault(1, 2)->state, AlarmState::Active);
}

TEST(AlarmWatch, ALostStationIsAnAlarmUntilItAnswers)
{
    Watched under;
    under.made.next.lostStations = { 2 };

    under.look();
    EXPECT_EQ(under.of(AlarmKind::Station, 2)->state, AlarmState::Active);

    under.made.next.lostStations.clear();
    under.made.readStanding(2);
    under.look();
    EXPECT_EQ(under.of(AlarmKind::Station, 2)->state, AlarmState::Returned);
}

TEST(AlarmWatch, ALineThatIsDownIsAnAlarmWithItsReason)
{
    Watched under;
    under.made.next.isOpen = false;
    under.look();
    EXPECT_EQ(under.of(AlarmKind::Line), nullptr) << "it was not opened yet";

    under.made.next.downReason = QStringLiteral("unplugged");
    under.look();
    EXPECT_EQ(under.of(AlarmKind::Line)->reason, QStringLiteral("unplugged"));

    under.watch.noteLine(false, {});
    EXPECT_EQ(under.of(AlarmKind::Line)->state, AlarmState::Returned);
}

TEST(AlarmWatch, AStopThatIsNotConfirmedIsOneAlarmUntilItIs)
{
    Watched under;

    under.watch.noteAlarm(QStringLiteral("STOP NOT CONFIRMED by station 2"));
    under.watch.noteStop(unconfirmed("STOP NOT CONFIRMED by station 2"));
    EXPECT_EQ(under.watch.book().list().size(), 1);
    EXPECT_EQ(under.of(AlarmKind::Stop)->state, AlarmState::Active);

    under.watch.noteAlarm(QStringLiteral("all stops confirmed"));
    EXPECT_EQ(under.watch.book().list().size(), 1);
    EXPECT_EQ(under.of(AlarmKind::Stop)->state, AlarmState::Returned);
}

TEST(AlarmWatch, AStopThatIsConfirmedEndsTheAlarmOfAnEarlierOne)
{
    Watched under;
    under.watch.noteStop(unconfirmed("STOP NOT CONFIRMED by station 2"));

    under.watch.noteStop({ {}, QStringLiteral("all stops confirmed") });

    EXPECT_EQ(under.of(AlarmKind::Stop)->state, AlarmState::Returned);
}

TEST(AlarmWatch, AJournalThatCannotBeWrittenIsAnAlarm)
{
    Watched under;

    under.watch.noteJournal(QStringLiteral("the disk is full"));
    EXPECT_EQ(under.of(AlarmKind::Journal)->state, AlarmState::Active);

    under.watch.noteJournal({});
    EXPECT_EQ(under.of(AlarmKind::Journal)->state, AlarmState::Returned);
}

TEST(AlarmWatch, AnAcknowledgementIsNotedOnceWithWho)
{
    Watched under;
    under.made.read(1, "FU", 0, 2);
    under.look();

    under.watch.acknowledge({ { AlarmKind::Fault, 1, 2, {} } });
    under.watch.acknowledge({ { AlarmKind::Fault, 1, 2, {} } });

    ASSERT_EQ(under.noted.size(), 1U);
    EXPECT_EQ(under.noted[0].text.toStdString(), "acknowledged by anna: station 1: fault 2");
    EXPECT_EQ(under.fault(1, 2)->state, AlarmState::Acknowledged);
}

TEST(AlarmWatch, WhatNobodyAcknowledgedBeforeIsThereAfterAStart)
{
    AlarmBook before;
    before.raise({ AlarmKind::Fault, 1, 2, {} }, {}, noon - 60'000);
    before.raise({ AlarmKind::Station, 2, 0, {} }, {}, noon - 50'000);
    before.raise({ AlarmKind::Line, 0, 0, {} }, QStringLiteral("unplugged"), noon - 40'000);
    Watched under;
    under.made.readStanding(1);
    under.made.readStanding(2);
    under.look();

    under.watch.restore(before);

    EXPECT_EQ(under.fault(1, 2)->state, AlarmState::Returned) << "the drive reports no fault now";
    EXPECT_EQ(under.of(AlarmKind::Station, 2)->state, AlarmState::Returned) << "it answers";
    EXPECT_EQ(under.of(AlarmKind::Line)->state, AlarmState::Returned) << "it is open";
    EXPECT_EQ(under.watch.book().unacknowledged(), 3);
}

TEST(AlarmWatch, AFaultFromBeforeThatIsStillThereIsNoNewOne)
{
    AlarmBook before;
    before.raise({ AlarmKind::Fault, 1, 2, {} }, {}, noon - 60'000);
    before.acknowledge({ AlarmKind::Fault, 1, 2, {} });
    Watched under;
    under.watch.restore(before);

    under.made.read(1, "FU", 0, 2);
    under.look();

    EXPECT_EQ(under.fault(1, 2)->state, AlarmState::Acknowledged);
    EXPECT_TRUE(under.came.empty());
}

TEST(AlarmWatch, AStationThatIsNotInTheConfigurationAnyMoreIsNotWaitedFor)
{
    AlarmBook before;
    before.raise({ AlarmKind::Station, 9, 0, {} }, {}, noon - 60'000);
    Watched under;

    under.watch.restore(before);

    EXPECT_EQ(under.of(AlarmKind::Station, 9)->state, AlarmState::Returned);
}
