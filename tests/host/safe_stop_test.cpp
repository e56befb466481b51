// SPDX-License-Identifier: MIT
// The stop goes first, is repeated until its echo came, and is never silently missing.
#include "runtime_fixture.h"

#include <utility>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr int controlWord = 0x1001;

RuntimeSettings withStops()
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 4 } };
    return settings;
}

class SafeStopTest : public ::testing::Test {
protected:
    SafeStopTest()
    {
        host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 8") } }));
        host.steps(2);
        host.write(1, "CW", 0, { 1 });
        host.write(2, "CW", 0, { 1 });
        host.steps(2);
        host.outcomes.clear();
    }

    int command(int station) { return host.stations.registers[{ station, controlWord }]; }

    RuntimeUnderTest host { withStops() };
};

} // namespace

TEST_F(SafeStopTest, EveryStationIsStoppedAndHeard)
{
    const StopReport report = host.host.stop(seconds(5));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(command(1), 0);
    EXPECT_EQ(command(2), 4);
    EXPECT_EQ(host.alarms, Texts { "all stops confirmed" });
}

TEST(SafeStop, AControlWordOfTwoBytesIsConfirmed)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0x0206 } };
    RuntimeUnderTest host(settings);

    const StopReport report = host.host.stop(seconds(1));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ((host.stations.registers[{ 1, controlWord }]), 0x0206);
    EXPECT_EQ(host.alarms, Texts { "all stops confirmed" });
}

TEST_F(SafeStopTest, WaitingWritesAreDroppedNotSent)
{
    host.write(1, "FRE", 0, { 3000 });
    host.write(1, "CW", 0, { 3 });

    host.host.stop(seconds(5));

    EXPECT_EQ(host.outcomes, (Texts { "1002 refused", "1003 refused" }));
    EXPECT_EQ(host.outcomeRecords.back().refusal, Refusal::Stopping);
    EXPECT_EQ(command(1), 0);
    EXPECT_EQ(host.stations.registers.count({ 1, 0x1002 }), 0U);
}

TEST_F(SafeStopTest, AWriteThatWaitsBehindTheStopIsNotSentAfterIt)
{
    // The stops take the places of the two commands, ahead of the last write.
    host.write(2, "FRE", 0, { 3000 });
    host.write(1, "CW", 0, { 3 });
    host.write(2, "CW", 0, { 3 });
    host.write(1, "FRE", 0, { 3000 });

    host.host.stop(seconds(5));
    host.steps(10);

    EXPECT_EQ(host.outcomes,
              (Texts { "1002 refused", "1003 refused", "1004 refused", "1005 refused" }));
    EXPECT_EQ(host.stations.registers.count({ 1, 0x1002 }), 0U);
    EXPECT_EQ(host.stations.registers.count({ 2, 0x1002 }), 0U);
}

TEST_F(SafeStopTest, WhatIsWrittenAsOthersAreDroppedIsRefused)
{
    host.write(1, "FRE", 0, { 3000 });
    bool isFirst = true;
    host.host.onOutcome([&](const WriteOutcome &outcome) {
        host.outcomeRecords.push_back(outcome);
        if (std::exchange(isFirst, false))
            host.write(1, "FRE", 0, { 4000 });
    });

    host.host.stop(seconds(5));

    ASSERT_EQ(host.outcomeRecords.size(), 4U);
    EXPECT_EQ(host.outcomeRecords.back().id, 1003);
    EXPECT_EQ(host.outcomeRecords.back().refusal, Refusal::Stopping);
}

TEST(SafeStop, ManyWaitingWritesAreDroppedWhereNothingIsPolled)
{
    RuntimeUnderTest host(withStops());
    host.write(1, "FRE", 0, { 1 });
    host.steps(1);
    for (int i = 0; i < 20; ++i)
        host.host.write({ 1, QStringLiteral("F"), i % 10 + i / 10 * 256, { 7 }, true, false });

    host.host.stop(seconds(5));

    EXPECT_EQ(host.outcomes.size(), 1U + 20U);
    EXPECT_EQ(host.sent(1, 6), 1 + 1) << "the frequency and the stop";
    EXPECT_EQ(host.host.link().waitingWrites(), 0);
}

TEST_F(SafeStopTest, TheStopIsTheNextFrameOnTheLineToTheStationHeardLastFirst)
{
    const auto before = host.stations.line.sent().size();

    host.host.stop(seconds(5));

    EXPECT_EQ(host.stations.line.sent().mid(before),
              (QVector<QByteArray> { framed("02 06 10 01 00 04"), framed("01 06 10 01 00 00") }));
}

namespace {

/// What goes on the line first when a stop is due behind 60 writes of somebody else's.
FRAME_PRO firstBehindManyWrites(Link &link)
{
    for (int i = 0; i < 60; ++i)
        link.write(1, QStringLiteral("F"), i % 10 + i / 10 * 256, { 7 }, 1);
    SafeStop stop(link, { { 1, 0 } }, [](int) { return StopOutlook(); });
    stop.begin(Duration { 0 }, seconds(2));
    stop.prepareNext(Duration { 0 });
    FRAME_PRO first;
    EXPECT_TRUE(link.nextFrame(first));
    return first;
}

} // namespace

TEST(SafeStop, ManyWritesWithManyTriesAreClearedAway)
{
    LinkSettings settings;
    settings.retryLimit = 100;
    Link link(privateCopy(), settings);
    link.poll({ wanted(1, QStringLiteral("D"), 0) });

    const FRAME_PRO first = firstBehindManyWrites(link);

    EXPECT_EQ(first.var.varKind, safeStopTag);
    EXPECT_EQ(link.waitingWrites(), 1);
}

TEST(SafeStop, ThePauseOfTheDriverAmongManyWritesIsPassed)
{
    Link link(privateCopy(), LinkSettings()); // polls nothing: the driver pauses between some

    const FRAME_PRO first = firstBehindManyWrites(link);

    EXPECT_EQ(first.var.varKind, safeStopTag);
    EXPECT_EQ(link.waitingWrites(), 1);
    EXPECT_FALSE(link.registerState(1, QStringLiteral("F"), 0).writePending);
}

TEST(SafeStop, AWriteThatHasNoFrameIsNotWaitedForWhateverIsPolledAndTried)
{
    for (int tries = 1; tries <= 7; ++tries) {
        for (const int blocks : { 0, 1 }) {
            LinkSettings settings;
            settings.retryLimit = tries;
            Link link(privateCopy(), settings);
            QList<KEY_ADDRESS> polled;
            for (int i = 0; i < blocks; ++i)
                polled.append(wanted(1, QStringLiteral("D"), 2 * i));
            link.poll(polled);
            link.write(1, QStringLiteral("CW"), 0, { 1, 1 });
            SafeStop stop(link, { { 1, 0 } }, [](int) { return StopOutlook(); });
            stop.begin(Duration { 0 }, seconds(2));

            stop.prepareNext(Duration { 0 });

            FRAME_PRO first;
            EXPECT_TRUE(link.nextFrame(first)) << tries << " tries, " << blocks << " blocks";
            EXPECT_EQ(first.var.varKind, safeStopTag) << tries << " tries, " << blocks << " blocks";
        }
    }
}

TEST_F(SafeStopTest, AnUnconfirmedStopIsSaidLoudly)
{
    host.stations.dead = { 2 };

    const StopReport report = host.host.stop(seconds(3));

    EXPECT_EQ(report.unconfirmed, QVector<int> { 2 });
    EXPECT_EQ(host.alarms, Texts { "STOP NOT CONFIRMED by station 2: it may still run" });
    EXPECT_EQ(command(1), 0);
}

TEST_F(SafeStopTest, AnUnconfirmedStopIsSentFirstOnceTheLineIsBack)
{
    host.stations.line.unplug();
    const StopReport report = host.host.stop(seconds(1));
    const auto before = host.stations.line.sent().size();
    host.stations.line.plugIn();

    host.runFor(seconds(5));

    EXPECT_EQ(report.unconfirmed, (QVector<int> { 1, 2 }));
    // The adapter may be another one: once both have their stop its echo is looked for, before a
    // stop counts as confirmed.
    const QByteArray statusRead = framed("01 03 20 00 00 01");
    EXPECT_EQ(
        host.stations.line.sent().mid(before, 6),
        (QVector<QByteArray> { framed("02 06 10 01 00 04"), framed("01 06 10 01 00 00"), statusRead,
                               statusRead, statusRead, framed("01 06 10 01 00 00") }));
    EXPECT_EQ(host.alarms.back(), "all stops confirmed");
    EXPECT_EQ(command(2), 4);
}

TEST_F(SafeStopTest, AStationThatComesBackIsStoppedAtLast)
{
    host.stations.dead = { 2 };
    host.host.stop(seconds(3));
    host.stations.dead.clear();

    host.runFor(seconds(20));

    EXPECT_EQ(command(2), 4);
    EXPECT_EQ(host.alarms.back(), "all stops confirmed");
}

TEST_F(SafeStopTest, NoOtherWriteGoesToAStationBeforeItsStopIsConfirmed)
{
    host.stations.dead = { 2 };
    host.host.stop(seconds(3));

    host.write(2, "CW", 0, { 1 });
    host.write(2, "FRE", 0, { 500 });
    host.steps(1);

    EXPECT_EQ(host.outcomes, (Texts { "1002 refused", "1003 refused" }));
    EXPECT_EQ(host.outcomeRecords.at(2).refusal, Refusal::Stopping);
    EXPECT_EQ(host.outcomeRecords.at(3).refusal, Refusal::Stopping);
}

TEST_F(SafeStopTest, TheEchoOfAnotherValueDoesNotConfirm)
{
    host.stations.changes = { instead(framed("02 06 10 01 00 01")),
                              instead(framed("01 06 10 01 00 01")) };

    const StopReport report = host.host.stop(seconds(5));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(host.sent(1, 6), 1 + 2);
    EXPECT_EQ(host.sent(2, 6), 1 + 2);
}

TEST_F(SafeStopTest, AStationOfAnotherListIsStoppedToo)
{
    host.host.setStops({ { 1, 0 }, { 3, 6 } });

    const StopReport report = host.host.stop(seconds(5));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(command(1), 0);
    EXPECT_EQ(command(2), 1) << "not of the list any more";
    EXPECT_EQ(command(3), 6);
}

TEST_F(SafeStopTest, AnotherListEndsNoStopThatIsNotConfirmed)
{
    host.stations.dead = { 2 };
    host.host.stop(seconds(3));
    host.stations.dead.clear();

    host.host.setStops({ { 2, 9 } });
    host.runFor(seconds(20));

    EXPECT_EQ(command(2), 4);
    EXPECT_EQ(host.alarms.back(), "all stops confirmed");
}

TEST(SafeStop, AUserWhoGoesAwayStopsTheDrives)
{
    RuntimeSettings settings = withStops();
    settings.userPatience = seconds(2);
    RuntimeUnderTest host(settings);
    host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    host.stations.registers[{ 2, controlWord }] = 1;
    host.host.noteUser();
    host.runFor(milliseconds(1900));
    const int before = host.sent(2, 6);

    host.runFor(milliseconds(500));

    EXPECT_EQ(before, 0);
    EXPECT_EQ(host.stations.registers.at({ 2, controlWord }), 4);
    EXPECT_EQ(host.alarms,
              (Texts { "the user interface is silent: stopping", "all stops confirmed" }));
}

TEST(SafeStop, AUserWhoIsAskedForInEachStepNeedsNoNote)
{
    bool isThere = true;
    RuntimeSettings settings;
    settings.userPatience = seconds(1);
    settings.stops = { { 1, 0 } };
    settings.isUserThere = [&isThere] { return isThere; };
    RuntimeUnderTest host(settings);
    host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));

    host.runFor(seconds(5));
    const Texts whileThere = host.alarms;
    isThere = false;
    host.runFor(seconds(2));

    EXPECT_EQ(whileThere, Texts {});
    EXPECT_EQ(host.alarms,
              (Texts { "the user interface is silent: stopping", "all stops confirmed" }));
}

TEST(SafeStop, AUserIsGoneBehindTheTimeNotAtIt)
{
    RuntimeSettings settings = withStops();
    settings.userPatience = seconds(2);
    RuntimeUnderTest host(settings);
    host.host.noteUser();

    host.stations.line.advance(seconds(2));
    host.host.step();
    const Texts before = host.alarms;
    host.stations.line.advance(Duration { 1 });
    host.host.step();

    EXPECT_EQ(before, Texts {});
    EXPECT_EQ(host.alarms.front(), "the user interface is silent: stopping");
}

TEST(SafeStop, WithoutStopsTheWritesEndAndTheReportSaysSo)
{
    RuntimeUnderTest host;
    host.write(1, "FRE", 0, { 1 });
    host.write(1, "F", 0, { 2 });

    const StopReport report = host.host.stop(seconds(5));

    EXPECT_EQ(report.text.toStdString(), "no stops are configured, nothing was stopped");
    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(host.outcomes, (Texts { "1000 refused", "1001 refused" }));
    EXPECT_EQ(host.host.link().waitingWrites(), 0);
    EXPECT_EQ(host.alarms, Texts {});
}

TEST(SafeStop, WithoutStopsAUserWhoGoesAwayIsToldOf)
{
    RuntimeSettings settings;
    settings.userPatience = seconds(2);
    RuntimeUnderTest host(settings);

    host.runFor(seconds(3));

    EXPECT_EQ(host.alarms,
              Texts { "the user interface is silent: no stops are configured, nothing was "
                      "stopped" });
}

TEST(SafeStop, WhatIsWrittenAsWritesEndWithoutStopsIsRefused)
{
    RuntimeUnderTest host;
    host.write(1, "FRE", 0, { 1 });
    host.host.onOutcome([&](const WriteOutcome &outcome) {
        host.outcomeRecords.push_back(outcome);
        if (outcome.id == 1000)
            host.write(1, "FRE", 0, { 2 });
    });

    host.host.stop(seconds(5));

    ASSERT_EQ(host.outcomeRecords.size(), 2U);
    EXPECT_EQ(host.outcomeRecords.at(1).refusal, Refusal::Stopping);
    EXPECT_EQ(host.host.pendingWrites(), 0);
}

TEST(SafeStop, AStopMayGoToAStationThatNeverAnswered)
{
    RuntimeUnderTest host(withStops());

    host.write(2, "CW", 0, { 4 });
    host.write(2, "CW", 0, { 1 });
    host.steps(1);

    EXPECT_EQ(host.outcomes, (Texts { "1001 refused", "1000 confirmed" }));
    EXPECT_EQ(host.outcomeRecords.front().refusal, Refusal::NotAnswered);
}
