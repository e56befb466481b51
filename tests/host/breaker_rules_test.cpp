// SPDX-License-Identifier: MIT
// What the breaker knows of a station after each event, and how long a station is waited for.
#include "host/exchange/breaker.h"

#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// Waits of probes one after the other, in milliseconds; each of them fails.
Texts waitsOfProbes(Breaker &breaker, int count)
{
    Texts waits;
    for (int i = 0; i < count; ++i) {
        const Duration wait = breaker.probeTimeout(1, seconds(1), milliseconds(5));
        waits.push_back(std::to_string(wait / milliseconds(1)));
        breaker.noteGiveUp(1, seconds(i));
    }
    return waits;
}

/// Lets a station be silent for so many tries.
void beSilent(Breaker &breaker, int times)
{
    for (int i = 0; i < times; ++i)
        breaker.noteSilence(1);
}

} // namespace

TEST(BreakerRules, AStationIsInDoubtUntilItsFirstAnswerAndAfterEachTryWithoutOne)
{
    Breaker breaker;
    EXPECT_TRUE(breaker.isInDoubt(1));

    breaker.noteAnswer(1, seconds(0));
    EXPECT_FALSE(breaker.isInDoubt(1));

    breaker.noteSilence(1);
    EXPECT_TRUE(breaker.isInDoubt(1));

    breaker.noteSignOfLife(1, seconds(0));
    EXPECT_FALSE(breaker.isInDoubt(1));

    breaker.noteGiveUp(1, seconds(0));
    EXPECT_TRUE(breaker.isInDoubt(1));
}

TEST(BreakerRules, AStationThatAnsweredMayBeTriedSixTimesInARow)
{
    Breaker breaker;
    EXPECT_FALSE(breaker.mayRetry(1));
    breaker.noteAnswer(1, seconds(0));

    beSilent(breaker, 5);
    EXPECT_TRUE(breaker.mayRetry(1));
    beSilent(breaker, 1);
    EXPECT_FALSE(breaker.mayRetry(1));

    breaker.noteSignOfLife(1, seconds(0));
    beSilent(breaker, 5);
    EXPECT_TRUE(breaker.mayRetry(1)) << "counted anew from a sign of life on";
    beSilent(breaker, 1);
    EXPECT_FALSE(breaker.mayRetry(1));
}

TEST(BreakerRules, AStationThatNeverAnsweredIsTriedAgainOnlyAfterASignOfLife)
{
    Breaker breaker;
    breaker.noteSilence(1);
    EXPECT_FALSE(breaker.mayRetry(1));

    breaker.noteSignOfLife(1, seconds(0));
    EXPECT_TRUE(breaker.mayRetry(1));

    breaker.noteSilence(1);
    EXPECT_FALSE(breaker.mayRetry(1));
}

TEST(BreakerRules, ASignOfLifeOfAStationThatNobodyAskedIsNone)
{
    Breaker breaker;

    breaker.noteSignOfLife(1, seconds(0));

    EXPECT_TRUE(breaker.isInDoubt(1));
    EXPECT_FALSE(breaker.mayRetry(1));
}

TEST(BreakerRules, ASignOfLifeOfAStationThatNobodyAskedLeavesTheOthersAsTheyAre)
{
    Breaker breaker;
    breaker.setPolled({ 1 });

    breaker.noteSignOfLife(7, seconds(1));
    breaker.setPolled({ 1, 2 });
    breaker.noteGiveUp(2, seconds(2));

    EXPECT_EQ(breaker.polledStations(), 2);
    EXPECT_EQ(breaker.nextProbe(), seconds(3));
}

TEST(BreakerRules, AnAnswerKeepsThatSomebodyAskedForTheStation)
{
    Breaker breaker;
    breaker.noteAsked(1);
    breaker.noteAnswer(1, seconds(0));
    breaker.noteGiveUp(1, seconds(0));
    EXPECT_EQ(breaker.nextProbe(), std::nullopt);

    breaker.noteGiveUp(1, seconds(0));

    EXPECT_EQ(breaker.nextProbe(), seconds(1));
}

TEST(BreakerRules, TheThirdProbeOfAStationThatNeverAnsweredIsALongOne)
{
    Breaker breaker;
    breaker.noteGiveUp(1, seconds(0));

    EXPECT_EQ(waitsOfProbes(breaker, 9),
              (Texts { "25", "50", "1000", "225", "225", "225", "225", "1000", "225" }));
}

TEST(BreakerRules, AProbeWaitsForTheShareOfTheLongestDelayOnceFourOfItsOwnAreLonger)
{
    BreakerSettings fourTimesTheFirst;
    fourTimesTheFirst.longestDelay = seconds(4);
    Breaker equal(fourTimesTheFirst);
    equal.noteGiveUp(1, seconds(0));
    BreakerSettings less;
    less.longestDelay = milliseconds(3600);
    Breaker shorter(less);
    shorter.noteGiveUp(1, seconds(0));

    EXPECT_EQ(equal.probeTimeout(1, seconds(1), milliseconds(5)), milliseconds(25));
    EXPECT_EQ(shorter.probeTimeout(1, seconds(1), milliseconds(5)), milliseconds(90));
}

TEST(BreakerRules, AfterASignOfLifeOneProbeIsALongOne)
{
    Breaker breaker;
    breaker.noteGiveUp(1, seconds(0));
    breaker.noteSignOfLife(1, seconds(0));

    EXPECT_EQ(waitsOfProbes(breaker, 2), (Texts { "1000", "50" }));
}

TEST(BreakerRules, AStationThatIsNotLeftAloneIsProbedForTheFullTimeout)
{
    Breaker breaker;
    EXPECT_EQ(breaker.probeTimeout(1, seconds(1), milliseconds(5)), seconds(1));

    breaker.noteAnswer(1, seconds(0));
    EXPECT_EQ(breaker.probeTimeout(1, seconds(1), milliseconds(5)), seconds(1));
}

TEST(BreakerRules, OfSeveralProbesThatAreDueTheOldestIsFirst)
{
    Breaker breaker;
    breaker.setPolled({ 1, 2, 3 });
    breaker.noteGiveUp(1, milliseconds(20));
    breaker.noteGiveUp(2, milliseconds(10));
    breaker.noteGiveUp(3, milliseconds(10));

    EXPECT_EQ(breaker.nextProbe(), milliseconds(1010));
    EXPECT_EQ(breaker.dueProbe(milliseconds(1009)), std::nullopt);
    EXPECT_EQ(breaker.dueProbe(milliseconds(1010)), 2);
    EXPECT_EQ(breaker.dueProbe(milliseconds(1030)), 2);
}

TEST(BreakerRules, TheLivingAreThoseThatAnsweredAndAreNotLeftAlone)
{
    Breaker breaker;
    breaker.noteAnswer(1, seconds(3));
    breaker.noteSilence(2);
    breaker.noteAnswer(3, seconds(4));
    breaker.noteGiveUp(3, seconds(5));
    EXPECT_EQ(breaker.living(), (std::vector<int> { 1, 3 }));

    breaker.noteGiveUp(3, seconds(5));

    EXPECT_EQ(breaker.living(), std::vector<int> { 1 });
    EXPECT_EQ(breaker.lastAnswer(1), seconds(3));
    EXPECT_EQ(breaker.lastAnswer(2), std::nullopt);
    EXPECT_EQ(breaker.lastAnswer(3), seconds(4));
    EXPECT_EQ(breaker.lastAnswer(4), std::nullopt);
    EXPECT_TRUE(breaker.hasAnswered(3));
    EXPECT_FALSE(breaker.hasAnswered(2));
}

namespace {

/// A breaker before a line whose stations answer in 40 ms; three seconds of response timeout.
class BreakerTimeouts : public ::testing::Test {
protected:
    static LineSettings patient()
    {
        LineSettings settings = slowLine();
        settings.responseTimeout = seconds(3);
        return settings;
    }

    /// Has a station answer once.
    void ask(int station, Duration delay = milliseconds(40))
    {
        stations.slow[station] = delay;
        guard.probe(station, { seconds(3), std::nullopt, false });
        breaker.noteAnswer(station, stations.line.now());
    }

    ScriptedLine stations { patient() };
    GuardedExchange guard { stations.line };
    Breaker breaker;
    BreakerExchange exchange { stations.line, guard, breaker };
};

} // namespace

TEST_F(BreakerTimeouts, ALivingStationTakesOneAndAHalfOfItsSlowestAnswerAnd20Milliseconds)
{
    ask(1);

    EXPECT_EQ(exchange.livingTimeout(1), milliseconds(80));
    EXPECT_EQ(exchange.livingTimeout(2), milliseconds(100)) << "never heard";
}

TEST_F(BreakerTimeouts, AStationOfWhichNoAnswersRequestIsKnownCountsAsNeverHeard)
{
    stations.changes = { silence() };
    for (int i = 0; i < 2; ++i) // the answer may be that to either
        guard.probe(1, { milliseconds(100), std::nullopt, false });
    const ReplyCause cause = guard.report().verdict.cause;

    EXPECT_EQ(cause, ReplyCause::Good);
    EXPECT_EQ(exchange.livingTimeout(1), milliseconds(100));
    EXPECT_EQ(exchange.doubtTimeout(1), milliseconds(1000));
}

TEST_F(BreakerTimeouts, AStationInDoubtGetsTwiceItsSlowestAnswerAnd30Milliseconds)
{
    ask(1);

    EXPECT_EQ(exchange.doubtTimeout(1), milliseconds(110));
}

TEST_F(BreakerTimeouts, StrangersShareOneSecondButGet100MillisecondsEach)
{
    EXPECT_EQ(exchange.doubtTimeout(9), milliseconds(1000));

    breaker.setPolled({ 1 });
    EXPECT_EQ(exchange.doubtTimeout(9), milliseconds(1000));
    breaker.setPolled({ 1, 2, 3, 4 });
    EXPECT_EQ(exchange.doubtTimeout(9), milliseconds(250));
    breaker.setPolled({ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11 });
    EXPECT_EQ(exchange.doubtTimeout(9), milliseconds(100));
}

TEST_F(BreakerTimeouts, AStrangerGetsTwiceWhatTheSlowestOtherTakes)
{
    breaker.setPolled({ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 });
    ask(1, milliseconds(70));
    ask(2, milliseconds(60));

    EXPECT_EQ(exchange.doubtTimeout(9), milliseconds(140));
}

TEST_F(BreakerTimeouts, NobodyIsWaitedForLongerThanTheResponseTimeout)
{
    ask(1, milliseconds(2000));

    EXPECT_EQ(exchange.livingTimeout(1), seconds(3));
    EXPECT_EQ(exchange.doubtTimeout(1), seconds(3));
    EXPECT_EQ(exchange.doubtTimeout(9), seconds(3));
}
