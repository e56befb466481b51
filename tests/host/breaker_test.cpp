// SPDX-License-Identifier: MIT
// A dead station: left alone, probed, taken back, and no burden to the others.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr int deadStation = 4;

LineSettings oneSecondTimeout()
{
    LineSettings settings;
    settings.speed = 19200;
    settings.responseTimeout = seconds(1);
    return settings;
}

/// Eight stations with one block each; three tries.
class EightStations : public ::testing::Test {
protected:
    EightStations()
    {
        QVector<PlanEntry> entries;
        for (int station = 1; station <= 8; ++station)
            entries.append({ station, QStringLiteral("D 0-9") });
        host.host.setPlan(planOf(entries));
    }

    /// Requests to station 1 in a time: rotations of those that answer.
    int rotationsWithin(Duration span)
    {
        const int before = host.sent(1, 3);
        host.runFor(span);
        return host.sent(1, 3) - before;
    }

    RuntimeUnderTest host { RuntimeSettings(), oneSecondTimeout() };
};

} // namespace

TEST_F(EightStations, OneDeadSlowsTheOthersByLessThanATwentieth)
{
    const int allAlive = rotationsWithin(seconds(300));
    host.stations.dead = { deadStation };

    const int withDetection = rotationsWithin(seconds(300));
    const int afterwards = rotationsWithin(seconds(300));

    RecordProperty("rotationsAllAlive", allAlive);
    RecordProperty("rotationsWithDetection", withDetection);
    RecordProperty("rotationsAfterwards", afterwards);
    EXPECT_GT(withDetection * 105, allAlive * 100);
    EXPECT_GT(afterwards * 105, allAlive * 100);
    EXPECT_TRUE(host.host.isLeftAlone(deadStation));
}

TEST_F(EightStations, OneDeadCostsTheOthersLessThanATwentiethOfTheirOwnRotation)
{
    QVector<PlanEntry> others;
    for (int station = 1; station <= 8; ++station) {
        if (station != deadStation)
            others.append({ station, QStringLiteral("D 0-9") });
    }
    RuntimeUnderTest seven({}, oneSecondTimeout());
    seven.host.setPlan(planOf(others));
    seven.runFor(seconds(300));
    host.stations.dead = { deadStation };
    host.runFor(seconds(60));

    const int rotations = rotationsWithin(seconds(300));

    RecordProperty("rotationsOfSevenAlone", seven.sent(1, 3));
    EXPECT_GT(rotations * 105, seven.sent(1, 3) * 100);
}

TEST_F(EightStations, ProbesTakeNoMoreThanATwentiethOfTheLine)
{
    host.stations.dead = { deadStation };
    host.runFor(seconds(60));
    const Duration before = host.host.counters().station(deadStation).busy;

    host.runFor(seconds(300));

    const Duration busy = host.host.counters().station(deadStation).busy - before;
    EXPECT_LT(busy, seconds(15));
    EXPECT_GT(busy, seconds(0));
}

TEST_F(EightStations, ARevivedOneIsBackWithinTenSeconds)
{
    for (int offset = 0; offset < 10; ++offset) {
        SCOPED_TRACE(std::to_string(offset) + " s after the last");
        host.stations.dead = { deadStation };
        host.runFor(seconds(60 + offset));
        ASSERT_TRUE(host.host.isLeftAlone(deadStation));
        host.stations.dead.clear();
        host.stations.registers[{ deadStation, 0xD000 }] = 500 + offset;

        host.runFor(seconds(10));

        ASSERT_FALSE(host.host.isLeftAlone(deadStation));
        ASSERT_EQ(host.value(deadStation, "D", 0), 500 + offset);
    }
}

TEST_F(EightStations, ReadsOfADeadOneFailWithoutTheLine)
{
    host.stations.dead = { deadStation };
    host.runFor(seconds(30));
    const int before = host.sent(deadStation, 3);

    host.steps(7);

    EXPECT_EQ(host.sent(deadStation, 3), before);
    EXPECT_GT(host.host.counters().station(deadStation).notAsked, 0U);
    EXPECT_TRUE(host.host.value(deadStation, QStringLiteral("D"), 0).failed);
    EXPECT_TRUE(host.host.value(deadStation, QStringLiteral("D"), 0).stale);
    EXPECT_FALSE(host.host.value(1, QStringLiteral("D"), 0).stale);
}

TEST_F(EightStations, AllDeadLeavesTheLineQuietBetweenProbes)
{
    host.stations.dead = { 1, 2, 3, 4, 5, 6, 7, 8 };
    host.runFor(seconds(120));
    const auto before = host.stations.line.sent().size();

    host.runFor(seconds(9));

    EXPECT_GE(host.stations.line.sent().size() - before, 7);
    EXPECT_LE(host.stations.line.sent().size() - before, 9);
}

namespace {

/// A breaker of one polled station that has answered once and is left alone since 0 s.
Breaker breakerOfADeadStation()
{
    Breaker breaker;
    breaker.setPolled({ 1 });
    breaker.noteAnswer(1, Duration { 0 });
    breaker.noteGiveUp(1, Duration { 0 });
    breaker.noteGiveUp(1, Duration { 0 });
    return breaker;
}

} // namespace

TEST(Breaker, DelaysDoubleUpToTheLongest)
{
    Breaker breaker = breakerOfADeadStation();
    Texts delays;
    Duration now { 0 };

    for (int i = 0; i < 6; ++i) {
        const Duration next = breaker.nextProbe().value_or(now);
        delays.push_back(std::to_string((next - now) / milliseconds(1)));
        now = next;
        breaker.noteGiveUp(1, now);
    }

    EXPECT_EQ(delays, (Texts { "1000", "2000", "4000", "8000", "9000", "9000" }));
}

TEST(Breaker, AnAnswerStartsTheCountAnew)
{
    Breaker breaker;
    breaker.noteAnswer(1, seconds(0));
    breaker.noteGiveUp(1, seconds(0));
    breaker.noteAnswer(1, seconds(0));
    breaker.noteGiveUp(1, seconds(1));

    EXPECT_FALSE(breaker.isLeftAlone(1));
}

TEST(Breaker, AStationNeverHeardIsLeftAloneAfterItsFirstRequest)
{
    Breaker breaker;

    breaker.noteGiveUp(1, seconds(0));

    EXPECT_TRUE(breaker.isLeftAlone(1));
}

TEST(Breaker, ProbesAreShortUntilTheStationShowsLife)
{
    Breaker breaker = breakerOfADeadStation();

    const Duration before = breaker.probeTimeout(1, seconds(1), milliseconds(5));
    breaker.noteSignOfLife(1, milliseconds(500));

    EXPECT_EQ(before, milliseconds(25));
    EXPECT_EQ(breaker.probeTimeout(1, seconds(1), milliseconds(5)), seconds(1));
    EXPECT_EQ(breaker.dueProbe(milliseconds(499)), std::nullopt);
    EXPECT_EQ(breaker.dueProbe(milliseconds(500)), 1);
}

TEST(Breaker, ProbesWaitForAFortiethFromTheThirdOnForThatOfTheLongestDelay)
{
    Breaker breaker = breakerOfADeadStation();
    Texts waits;

    for (int i = 0; i < 9; ++i) {
        waits.push_back(
            std::to_string(breaker.probeTimeout(1, seconds(1), milliseconds(5)) / milliseconds(1)));
        breaker.noteGiveUp(1, seconds(i));
    }

    EXPECT_EQ(waits, (Texts { "25", "50", "225", "225", "225", "225", "225", "1000", "225" }));
}

TEST(Breaker, AProbeWaitsForWhatALivingStationTakes)
{
    const Breaker breaker = breakerOfADeadStation();

    EXPECT_EQ(breaker.probeTimeout(1, seconds(1), milliseconds(320)), milliseconds(320));
    EXPECT_EQ(breaker.probeTimeout(1, milliseconds(300), milliseconds(320)), milliseconds(300));
}

TEST(Breaker, NobodyIsProbedOfWhomNothingIsWanted)
{
    Breaker breaker = breakerOfADeadStation();

    breaker.setPolled({ 2 });
    const auto unwanted = breaker.nextProbe();
    breaker.noteAsked(1);

    EXPECT_EQ(unwanted, std::nullopt);
    EXPECT_EQ(breaker.nextProbe(), seconds(1));
}

TEST(Breaker, AFailedProbeLeavesThreeTimesItsTimeToTheLiving)
{
    Breaker alone = breakerOfADeadStation();
    Breaker shared = breakerOfADeadStation();
    shared.noteAnswer(2, seconds(0));

    alone.noteProbeCost(milliseconds(500), seconds(2));
    shared.noteProbeCost(milliseconds(500), seconds(2));

    EXPECT_EQ(alone.dueProbe(seconds(2)), 1);
    EXPECT_EQ(shared.dueProbe(milliseconds(3499)), std::nullopt);
    EXPECT_EQ(shared.dueProbe(milliseconds(3500)), 1);
    EXPECT_EQ(shared.nextProbe(), milliseconds(3500));
}

TEST(Breaker, AStationSlowerThanAShortProbeIsTakenBackByALongOne)
{
    RuntimeUnderTest host({}, oneSecondTimeout());
    host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 8-9") } }));
    host.stations.dead = { 2 };
    host.runFor(seconds(60));
    host.stations.dead.clear();
    host.stations.slow[2] = milliseconds(700);

    host.runFor(seconds(80));

    EXPECT_FALSE(host.host.isLeftAlone(2));
}

namespace {

/// Two polled stations, of which the second has been away for a minute.
class StationAway : public ::testing::Test {
protected:
    StationAway()
    {
        under.host.setPlan(
            planOf({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 8-9") } }));
        under.runFor(seconds(1));
        under.stations.dead = { 2 };
        under.runFor(seconds(60));
    }

    RuntimeUnderTest under { {}, oneSecondTimeout() };
};

} // namespace

TEST_F(StationAway, IsTakenBackAtOnceWhenALateReplyIsHeard)
{
    under.stations.dead.clear();
    under.stations.slow[2] = milliseconds(700);
    const int before = under.sent(2, 3);
    under.host.run([&] { return under.sent(2, 3) > before; }); // its probe, too short for it

    under.runFor(seconds(3));

    EXPECT_FALSE(under.host.isLeftAlone(2));
}

TEST_F(StationAway, IsProbedByReadsOfItsStatusWordThatAreCounted)
{
    const BlockKey status { 2, QStringLiteral("SW"), 0, 1, false };
    const quint64 before = under.host.counters().block(status).requests;

    under.runFor(seconds(30));

    EXPECT_EQ(under.host.counters().block(status).requests - before, 3U);
    EXPECT_EQ(under.host.counters().block(status).good, 0U);
    EXPECT_EQ(under.stations.line.sent().count(framed("02 03 20 00 00 01")),
              static_cast<int>(under.host.counters().block(status).requests));
}

TEST(BreakerExchange, PutsOffAProbeThatCouldNotBeAskedByTwentyMilliseconds)
{
    ScriptedLine stations(slowLine());
    GuardedExchange guard(stations.line);
    Breaker breaker { BreakerSettings() };
    BreakerExchange exchange(stations.line, guard, breaker);
    breaker.setPolled({ 1 });
    breaker.noteGiveUp(1, Duration { 0 });
    stations.line.advance(seconds(1));
    stations.line.close();

    const Reply reply = exchange.probe(1);

    EXPECT_EQ(reply.kind, Reply::Kind::LineDown);
    EXPECT_EQ(breaker.nextProbe(), milliseconds(1020));
}

TEST_F(StationAway, AnswersItsProbeByARefusalToo)
{
    under.stations.dead.clear();
    const int before = under.sent(2, 3);
    for (int i = 0; i < 2000; ++i)
        under.stations.changes.push_back([](const QByteArray &reply) {
            const bool isHis = !reply.isEmpty() && reply.at(0) == 2;
            return MemoryLine::Answer { isHis ? framed("02 83 02") : reply, Duration { 0 } };
        });

    under.host.run([&] { return under.sent(2, 3) > before; });

    EXPECT_FALSE(under.host.isLeftAlone(2));
}
