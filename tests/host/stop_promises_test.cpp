// SPDX-License-Identifier: MIT
// What a stop promises where stations are dead: the living stop, in time, and go on undisturbed.
#include "runtime_fixture.h"

#include <algorithm>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr int controlWord = 0x1001;
constexpr int drives = 8;
constexpr int turning = 1;

LineSettings lineOf(Duration timeout)
{
    LineSettings settings;
    settings.speed = 19200;
    settings.responseTimeout = timeout;
    return settings;
}

RuntimeSettings stoppingEight()
{
    RuntimeSettings settings;
    for (int station = 1; station <= drives; ++station)
        settings.stops.append({ station, 0 });
    return settings;
}

/// Eight drives that are polled and turn.
class EightDrives : public RuntimeUnderTest {
public:
    explicit EightDrives(Duration timeout, const RuntimeSettings &settings = stoppingEight())
        : RuntimeUnderTest(settings, lineOf(timeout))
    {
        QVector<PlanEntry> entries;
        for (int station = 1; station <= drives; ++station)
            entries.append({ station, QStringLiteral("SW") });
        host.setPlan(planOf(entries));
        runFor(seconds(2));
        for (int station = 1; station <= drives; ++station)
            stations.registers[{ station, controlWord }] = turning;
    }

    QVector<int> running() const
    {
        QVector<int> result;
        for (int station = 1; station <= drives; ++station) {
            if (stations.registers.at({ station, controlWord }) == turning)
                result.append(station);
        }
        return result;
    }

    /// Reads that were answered within a time.
    quint64 readsWithin(Duration span)
    {
        const quint64 before = host.counters().reads().good;
        runFor(span);
        return host.counters().reads().good - before;
    }
};

} // namespace

TEST(Stop, OneDeadDriveOfEightDoesNotEatTheBudget)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 4 };
    const Duration begun = plant.stations.line.now();

    const StopReport report = plant.host.stop(seconds(2));

    EXPECT_EQ(plant.running(), QVector<int> { 4 });
    EXPECT_EQ(report.unconfirmed, QVector<int> { 4 });
    EXPECT_LE(plant.stations.line.now() - begun, milliseconds(2010));
}

TEST(Stop, ThreeDeadDrivesOfEightDoNotEatTheBudget)
{
    EightDrives plant(milliseconds(300));
    plant.stations.dead = { 1, 2, 3 };

    const StopReport report = plant.host.stop(seconds(2));

    EXPECT_EQ(plant.running(), (QVector<int> { 1, 2, 3 }));
    EXPECT_EQ(report.unconfirmed, (QVector<int> { 1, 2, 3 }));
    EXPECT_EQ(report.text.toStdString(), "STOP NOT CONFIRMED by station 1, 2, 3: it may still run");
}

TEST(Stop, TheCallEndsWithItsBudgetHoweverLongTheTimeout)
{
    EightDrives plant(seconds(20));
    plant.stations.dead = { 1, 2, 3, 4, 5, 6, 7, 8 };
    const Duration begun = plant.stations.line.now();

    plant.host.stop(seconds(2));

    EXPECT_GE(plant.stations.line.now() - begun, milliseconds(1990));
    EXPECT_LE(plant.stations.line.now() - begun, milliseconds(2010));
}

TEST(Stop, NoTryBeginsThatDoesNotFitIntoTheBudget)
{
    for (int budget = 700; budget < 730; budget += 3) {
        RuntimeSettings settings;
        settings.stops = { { 1, 0 } };
        RuntimeUnderTest under(settings); // a request takes 8 ms
        under.stations.dead = { 1 };
        const Duration begun = under.stations.line.now();

        under.host.stop(milliseconds(budget));

        EXPECT_LE(under.stations.line.now() - begun, milliseconds(budget)) << budget;
    }
}

TEST(Stop, TheBudgetHoldsOnALineThatBabbles)
{
    EightDrives plant(seconds(20));
    plant.stations.dead = { 1, 2, 3, 4, 5, 6, 7, 8 };
    plant.stations.line.inject(QByteArray(10000, 'x'));
    const Duration begun = plant.stations.line.now();

    plant.host.stop(seconds(2));

    EXPECT_LE(plant.stations.line.now() - begun, milliseconds(2010));
    EXPECT_GE(plant.sent(8, 6), 1);
}

TEST(Stop, WithNoBudgetEveryDriveIsAskedOnceAndNoneIsWaitedFor)
{
    EightDrives plant(seconds(1));
    for (int station = 1; station <= drives; ++station)
        plant.stations.slow[station] = milliseconds(50);
    const auto before = plant.stations.line.sent().size();
    const Duration begun = plant.stations.line.now();

    const StopReport report = plant.host.stop(Duration { 0 });

    EXPECT_EQ(plant.stations.line.sent().size() - before, 8);
    EXPECT_EQ(plant.running(), QVector<int> {});
    EXPECT_EQ(report.unconfirmed.size(), 8);
    EXPECT_LE(plant.stations.line.now() - begun, milliseconds(8 * 7));
}

TEST(Stop, WhatWasNotWaitedForIsConfirmedByTheStepsThatFollow)
{
    EightDrives plant(seconds(1));
    for (int station = 1; station <= drives; ++station)
        plant.stations.slow[station] = milliseconds(50);
    plant.host.stop(Duration { 0 });

    plant.runFor(seconds(3));

    EXPECT_EQ(plant.alarms.back(), "all stops confirmed");
}

TEST(Stop, PendingAtADeadDriveItCostsTheOthersNoMoreThanItsProbes)
{
    EightDrives without(seconds(1));
    EightDrives with(seconds(1));
    without.stations.dead = with.stations.dead = { 3, 4, 5 };
    without.runFor(seconds(30));
    with.runFor(seconds(28));
    with.host.stop(seconds(2));

    const quint64 undisturbed = without.readsWithin(seconds(400));
    const quint64 besidesTheStop = with.readsWithin(seconds(400));

    RecordProperty("undisturbed", static_cast<int>(undisturbed));
    RecordProperty("besidesTheStop", static_cast<int>(besidesTheStop));
    EXPECT_GT(besidesTheStop * 100, undisturbed * 98);
    EXPECT_FALSE(with.host.value(1, QStringLiteral("SW"), 0).failed);
}

TEST(Stop, PendingAtADeadDriveItMakesNoOthersReadFail)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 4 };
    plant.host.stop(seconds(2));
    plant.runFor(seconds(1));
    int failed = 0;

    plant.host.run([&, end = plant.stations.line.now() + seconds(60)] {
        failed += plant.host.value(1, QStringLiteral("SW"), 0).failed ? 1 : 0;
        return plant.stations.line.now() >= end;
    });

    EXPECT_EQ(failed, 0);
    EXPECT_GT(plant.sent(4, 6), 5) << "the stop is the probe of its station";
}

TEST(Stop, ADriveThatReturnsGetsItsStopBeforeItIsRead)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 4 };
    plant.host.stop(seconds(2));
    plant.runFor(seconds(30));
    plant.stations.dead.clear();
    const auto before = plant.stations.line.sent().size();

    plant.runFor(seconds(10));

    EXPECT_EQ(plant.running(), QVector<int> {});
    EXPECT_EQ(plant.alarms.back(), "all stops confirmed");
    const QVector<QByteArray> since = plant.stations.line.sent().mid(before);
    const auto first = std::find_if(since.begin(), since.end(),
                                    [](const QByteArray &frame) { return frame.at(0) == 4; });
    ASSERT_NE(first, since.end());
    EXPECT_EQ(*first, framed("04 06 10 01 00 00"));
}

TEST(Stop, WhatIsConfirmedIsFreeAgainWhileAnotherIsPending)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 2 };
    plant.host.stop(seconds(2));

    plant.write(1, "CW", 0, { 1 });
    plant.runFor(seconds(1));

    EXPECT_EQ(plant.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(plant.running(), (QVector<int> { 1, 2 }));
}

TEST(Stop, ADriveThatWasStartedAgainIsNotStoppedByTheRepeatsOfAnother)
{
    RuntimeSettings settings = stoppingEight();
    settings.stopBroadcast = true;
    EightDrives plant(seconds(1), settings);
    plant.stations.dead = { 2 };
    plant.host.stop(seconds(2));
    plant.write(1, "CW", 0, { 1 });
    plant.runFor(seconds(30));
    plant.stations.line.unplug();
    plant.runFor(seconds(1));
    plant.stations.line.plugIn();

    plant.runFor(seconds(30));

    EXPECT_EQ(plant.running(), (QVector<int> { 1, 2 }));
    EXPECT_EQ(plant.sent(0, 6), 1);
}

TEST(Stop, AUsersStopPassesWhileTheirStationsStopIsPending)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 2 };
    plant.host.stop(seconds(2));
    plant.stations.dead.clear();

    plant.write(2, "CW", 0, { 0 });
    plant.runFor(milliseconds(500));

    EXPECT_EQ(plant.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(plant.alarms.back(), "all stops confirmed") << "the echo of a stop is one, whosever";
}

TEST(Stop, AStopGoesToAStationThatIsLeftAlone)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 2 };
    plant.runFor(seconds(5));
    ASSERT_TRUE(plant.host.isLeftAlone(2));
    plant.stations.dead.clear();

    plant.write(2, "CW", 0, { 1 });
    plant.write(2, "CW", 0, { 0 });
    plant.runFor(milliseconds(200));

    EXPECT_EQ(plant.outcomes, (Texts { "1000 refused", "1001 confirmed" }));
    EXPECT_EQ(plant.outcomeRecords.front().refusal, Refusal::NotConnected);
    EXPECT_FALSE(plant.host.isLeftAlone(2));
}

TEST(Stop, AUsersStopToADeadStationIsTriedOnce)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 2 };
    plant.runFor(seconds(5));
    const int before = plant.sent(2, 6);

    plant.write(2, "CW", 0, { 0 });
    plant.runFor(milliseconds(200));

    EXPECT_EQ(plant.outcomes, Texts { "1000 timed out" });
    EXPECT_EQ(plant.sent(2, 6) - before, 1);
}

namespace {

/// Two drives, of which only the first is polled.
class WrittenDrive : public RuntimeUnderTest {
public:
    WrittenDrive()
        : RuntimeUnderTest(stops(), lineOf(milliseconds(300)))
    {
        host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    }

    static RuntimeSettings stops()
    {
        RuntimeSettings settings;
        settings.stops = { { 1, 0 }, { 2, 0 } };
        return settings;
    }
};

} // namespace

TEST(Stop, AStationThatIsOnlyWrittenComesBackAfterItWasLeftAlone)
{
    WrittenDrive plant;
    plant.stations.dead = { 2 };
    plant.write(2, "FRE", 0, { 1000 });
    plant.runFor(seconds(20));
    ASSERT_TRUE(plant.host.isLeftAlone(2));
    plant.stations.dead.clear();

    plant.runFor(seconds(10));

    EXPECT_FALSE(plant.host.isLeftAlone(2));
    plant.write(2, "CW", 0, { 1 });
    plant.runFor(seconds(1));
    EXPECT_EQ(plant.outcomes.back(), "1001 confirmed");
}

TEST(Stop, ThoseKnownToTurnAndThoseThatAnswerComeBeforeTheOthers)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 }, { 3, 0 }, { 4, 0 } };
    RuntimeUnderTest under(settings, lineOf(milliseconds(100)));
    under.stations.dead = { 1 };
    under.host.setPlan(planOf(
        { { 1, QStringLiteral("SW") }, { 2, QStringLiteral("SW") }, { 3, QStringLiteral("SW") } }));
    under.runFor(seconds(3));
    under.write(2, "CW", 0, { 1 });
    under.runFor(seconds(1));
    const auto before = under.stations.line.sent().size();

    under.host.stop(seconds(1));

    std::string order;
    for (const QByteArray &frame : under.stations.line.sent().mid(before, 4))
        order += std::to_string(frame.at(0));
    EXPECT_EQ(order, "2314");
}

TEST(Stop, TheEchoOfAFrequencyDoesNotConfirm)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 } };
    RuntimeUnderTest under(settings, lineOf(milliseconds(100)));
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.runFor(seconds(1));
    under.stations.refused = { { 1, controlWord } };
    under.host.stop(milliseconds(500));

    under.host.link().write(1, QStringLiteral("FRE"), 0, { 0 });
    under.runFor(seconds(2));

    EXPECT_EQ(under.stations.line.sent().count(framed("01 06 10 02 00 00")), 1);
    EXPECT_EQ(under.alarms, Texts { "STOP NOT CONFIRMED by station 1: it may still run" });
}

TEST(Stop, AFrequencyMakesNoDriveTurn)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 } };
    RuntimeUnderTest under(settings, lineOf(milliseconds(100)));
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.runFor(seconds(1));
    under.write(2, "FRE", 0, { 100 });
    under.runFor(seconds(1));
    const auto before = under.stations.line.sent().size();

    under.host.stop(seconds(1));

    EXPECT_EQ(under.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(under.stations.line.sent().at(before), framed("01 06 10 01 00 00"));
}

TEST(Stop, ItsOwnStopMakesNoDriveTurn)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0x0206 }, { 2, 0x0206 } };
    RuntimeUnderTest under(settings, lineOf(milliseconds(100)));
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") }, { 2, QStringLiteral("SW") } }));
    under.runFor(seconds(1));
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.write(2, "CW", 0, { 0x0206 });
    under.runFor(seconds(1));
    const auto before = under.stations.line.sent().size();

    under.host.stop(seconds(1));

    EXPECT_EQ(under.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(under.stations.line.sent().at(before), framed("01 06 10 01 02 06"));
}

TEST(Stop, ADriveIsKnownToTurnUntilItsStopIsConfirmed)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 } };
    RuntimeUnderTest under(settings, lineOf(milliseconds(100)));
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") }, { 2, QStringLiteral("SW") } }));
    under.runFor(seconds(1));
    under.write(1, "CW", 0, { 1 });
    under.runFor(seconds(1));
    under.stations.dead = { 1 };
    under.write(1, "CW", 0, { 0 });
    under.host.run([&] { return under.host.pendingWrites() == 0; });
    under.stations.dead.clear();
    under.runFor(seconds(20));
    under.host.setPlan(planOf({ { 2, QStringLiteral("SW") } })); // heard later than the other
    under.runFor(seconds(1));
    const auto before = under.stations.line.sent().size();

    under.host.stop(seconds(1));

    EXPECT_EQ(under.outcomes.back(), "1001 timed out");
    EXPECT_EQ(under.stations.line.sent().at(before), framed("01 06 10 01 00 00"));
}

TEST(Stop, ABroadcastGoesFirstWhereTheDrivesTakeIt)
{
    RuntimeSettings settings = stoppingEight();
    settings.stopBroadcast = true;
    EightDrives plant(seconds(1), settings);
    const auto before = plant.stations.line.sent().size();

    const StopReport report = plant.host.stop(seconds(2));

    EXPECT_EQ(plant.stations.line.sent().at(before), framed("00 06 10 01 00 00"));
    EXPECT_EQ(plant.stations.line.sent().size() - before, 9) << "it confirms nothing";
    EXPECT_TRUE(report.unconfirmed.isEmpty());
}

TEST(Stop, NothingIsBroadcastWhereTheStopsDiffer)
{
    RuntimeSettings settings = stoppingEight();
    settings.stopBroadcast = true;
    settings.stops[3].controlWord = 6;
    EightDrives plant(seconds(1), settings);

    plant.host.stop(seconds(2));

    EXPECT_EQ(plant.sent(0, 6), 0);
    EXPECT_EQ(plant.running(), QVector<int> {});
}

TEST(Stop, AUserWhoIsThereGivesItUp)
{
    EightDrives plant(seconds(1));
    plant.stations.dead = { 2, 5 };
    plant.host.stop(seconds(2));

    const QVector<int> unconfirmed = plant.host.cancelStop();
    plant.stations.dead.clear();
    plant.runFor(seconds(20));

    EXPECT_EQ(unconfirmed, (QVector<int> { 2, 5 }));
    EXPECT_EQ(plant.alarms.back(),
              "the stop is given up, NOT CONFIRMED by station 2, 5: it may still run");
    EXPECT_EQ(plant.running(), (QVector<int> { 2, 5 }));
    plant.write(2, "FRE", 0, { 1000 });
    plant.runFor(seconds(1));
    EXPECT_EQ(plant.outcomes, Texts { "1000 confirmed" });
}

TEST(Stop, OfAUserWhoIsGoneIsGivenUpByOneWhoIsBack)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 } };
    settings.userPatience = seconds(2);
    RuntimeUnderTest under(settings);
    under.stations.dead = { 1 };
    const std::string silent = "the user interface is silent: stopping";
    under.runFor(seconds(3));
    const auto before = std::count(under.alarms.begin(), under.alarms.end(), silent);

    under.host.cancelStop();
    under.runFor(seconds(3));

    EXPECT_EQ(before, 1);
    EXPECT_EQ(std::count(under.alarms.begin(), under.alarms.end(), silent), 2);
}

TEST(Stop, AStationThatIsLeftAloneComesBehindThoseThatAnswer)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 } };
    RuntimeUnderTest under(settings);
    under.write(2, "FRE", 0, { 5 });
    under.steps(1);
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.steps(2);
    under.stations.dead = { 1 };
    while (!under.host.isLeftAlone(1))
        under.host.step();
    const auto before = under.stations.line.sent().size();

    under.host.stop(seconds(1));

    EXPECT_EQ(under.stations.line.sent().at(before), framed("02 06 10 01 00 00"));
}

TEST(Stop, AStationThatIsLeftAloneComesBehindThoseThatAnswerAlsoWhereItIsKnownToTurn)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 } };
    RuntimeUnderTest under(settings);
    under.write(2, "FRE", 0, { 5 });
    under.steps(1);
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.steps(2);
    under.write(1, "CW", 0, { turning });
    under.steps(3);
    under.stations.dead = { 1 };
    while (!under.host.isLeftAlone(1))
        under.host.step();
    const auto before = under.stations.line.sent().size();

    under.host.stop(seconds(1));

    EXPECT_EQ(under.outcomes.back(), "1001 confirmed");
    EXPECT_EQ(under.stations.line.sent().at(before), framed("02 06 10 01 00 00"));
}

TEST(Stop, OfOtherStationsBehindOneThatWasGivenUpReportsItsOwn)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 } };
    RuntimeUnderTest under(settings);
    under.stations.dead = { 2 };
    const StopReport first = under.host.stop(milliseconds(300));
    under.host.cancelStop();
    under.host.setStops({ { 1, 0 } });

    const StopReport second = under.host.stop(seconds(1));

    EXPECT_TRUE(first.unconfirmed.contains(2));
    EXPECT_EQ(second.unconfirmed, QVector<int> {});
}

TEST(Stop, TakesNoMoreThanItsFramesWhereEveryDriveAnswersAtOnce)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 } };
    RuntimeUnderTest under(settings);
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") }, { 2, QStringLiteral("SW") } }));
    under.steps(6);
    const LineSettings &line = under.stations.line.settings();
    const Duration before = under.stations.line.now();

    const StopReport report = under.host.stop(seconds(10));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(under.stations.line.now() - before, 2 * (line.silentGap() + line.wireTime(16)));
}

TEST(Stop, GivenUpDuringTheCallItsReportIsStillTrue)
{
    EightDrives plant(seconds(1));
    plant.write(3, "FRE", 0, { 1000 });
    plant.host.onOutcome([&plant](const WriteOutcome &) { plant.host.cancelStop(); });
    const auto before = plant.stations.line.sent().size();

    const StopReport report = plant.host.stop(seconds(2));

    EXPECT_EQ(report.unconfirmed.size(), 8);
    EXPECT_EQ(plant.stations.line.sent().size(), before);
}

TEST(Stop, WithNothingPendingThereIsNothingToGiveUp)
{
    EightDrives plant(seconds(1));
    plant.host.stop(seconds(2));
    plant.alarms.clear();

    EXPECT_EQ(plant.host.cancelStop(), QVector<int> {});
    EXPECT_EQ(plant.alarms, Texts {});
}

TEST(Stop, OfAUserWhoIsGoneLetsNoWritePassUntilItIsConfirmed)
{
    RuntimeSettings settings = stoppingEight();
    settings.userPatience = seconds(5);
    EightDrives plant(milliseconds(300), settings);
    plant.stations.dead = { 2 };
    plant.runFor(seconds(10));

    plant.write(1, "CW", 0, { 1 });
    plant.host.noteUser();
    plant.write(1, "CW", 0, { 1 });
    plant.runFor(seconds(1));

    EXPECT_EQ(plant.outcomes, (Texts { "1000 refused", "1001 confirmed" }));
    EXPECT_EQ(plant.outcomeRecords.front().refusal, Refusal::Stopping);
}

TEST(Stop, OfAUserWhoIsGoneReachesTheLivingWhateverTheDeadDo)
{
    RuntimeSettings settings = stoppingEight();
    settings.userPatience = seconds(5);
    EightDrives plant(seconds(20), settings);
    plant.runFor(milliseconds(2999));
    plant.stations.dead = { 1, 3, 5, 7 };
    // The read that is under way when the patience ends may wait for its own timeout.
    plant.host.run([&] { return !plant.alarms.empty(); });
    const Duration begun = plant.stations.line.now();

    plant.host.run([&] { return plant.running() == QVector<int> { 1, 3, 5, 7 }; });

    EXPECT_LE(plant.stations.line.now() - begun, seconds(2));
}

TEST(Stop, WhatIsSentAgainCountsAsARetryAndNotAsGivenUp)
{
    WrittenDrive plant; // of whose adapter nothing is known: the first copy proves nothing

    const StopReport report = plant.host.stop(seconds(2));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(plant.host.counters().writes().retries, 2U);
    EXPECT_EQ(plant.host.counters().writes().giveUps, 0U);
}

TEST(Stop, BehindAnEchoingAdapterADeadDriveIsNotConfirmed)
{
    EightDrives plant(seconds(1));
    plant.stations.echoes = true;
    plant.runFor(seconds(2));
    plant.stations.dead = { 2 };

    const StopReport report = plant.host.stop(seconds(2));

    EXPECT_EQ(report.unconfirmed, QVector<int> { 2 });
    EXPECT_EQ(plant.running(), QVector<int> { 2 });
}

TEST(Stop, ADriveThatRejectsItsStopIsNotAskedAfterEachOfItsReads)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 } };
    RuntimeUnderTest under(settings, lineOf(milliseconds(100)));
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.runFor(seconds(1));
    for (int i = 0; i < 100000; ++i)
        under.stations.changes.push_back([](const QByteArray &reply) {
            const bool isWrite = reply.at(1) == 6;
            return MemoryLine::Answer { isWrite ? framed("01 86 03") : reply, Duration { 0 } };
        });

    const StopReport report = under.host.stop(seconds(2));
    under.runFor(seconds(60));

    EXPECT_EQ(report.unconfirmed, QVector<int> { 1 });
    EXPECT_LT(under.sent(1, 6), 20);
    EXPECT_GT(under.sent(1, 6), 5);
}

TEST(Stop, AWriteThatCanNeverBeSentHoldsItUpInNoWay)
{
    EightDrives plant(seconds(1));
    plant.host.link().write(1, QStringLiteral("CW"), 0, { 1, 1 }); // has no frame

    const StopReport report = plant.host.stop(seconds(2));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(plant.running(), QVector<int> {});
}

TEST(Stop, AClosedLineIsTriedAtOnceAndNoLongerThanTheBudget)
{
    EightDrives plant(seconds(1));
    plant.stations.line.unplug();
    plant.runFor(seconds(20)); // the pauses are at their longest
    plant.stations.line.plugIn();
    const Duration begun = plant.stations.line.now();

    const StopReport report = plant.host.stop(seconds(1));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_LE(plant.stations.line.now() - begun, seconds(1));
}
