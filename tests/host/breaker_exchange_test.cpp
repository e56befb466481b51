// SPDX-License-Identifier: MIT
// What goes on the line for which purpose, and what the breaker learns from it.
#include "host/exchange/breaker.h"

#include "host/exchange/guard_requests.h"
#include "runtime_fixture.h"

#include <optional>
#include <utility>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// Stations 1 and 2 are polled; three seconds of response timeout.
class BreakerExchangeTest : public ::testing::Test {
protected:
    BreakerExchangeTest()
    {
        breaker.setPolled({ 1, 2 });
        exchange.setPurposes([this](const FRAME_PRO &) { return purpose; },
                             [this](int) { return allowance; });
    }

    static LineSettings patient()
    {
        LineSettings settings = slowLine();
        settings.responseTimeout = seconds(3);
        return settings;
    }

    /// Reads the status word of a station.
    Reply ask(int station, Purpose why)
    {
        purpose = why;
        return exchange.run(statusWordRead(station));
    }

    ScriptedLine stations { patient() };
    GuardedExchange guard { stations.line };
    Breaker breaker;
    BreakerExchange exchange { stations.line, guard, breaker };
    Purpose purpose = Purpose::Polled;
    Allowance allowance { milliseconds(100), std::nullopt, true };
};

} // namespace

TEST_F(BreakerExchangeTest, WhatIsPolledIsNotAskedForOnceItIsPolledNoMore)
{
    for (const auto &[why, next] :
         { std::pair(Purpose::Polled, std::optional<Duration>()),
           std::pair(Purpose::Asked, std::optional<Duration>(seconds(1))) }) {
        breaker = Breaker();
        ask(1, why);
        breaker.noteGiveUp(1, Duration(0));
        breaker.noteGiveUp(1, Duration(0));

        EXPECT_EQ(breaker.nextProbe(), next);
    }
}

TEST_F(BreakerExchangeTest, WhatIsNotAskedTakesNoTime)
{
    breaker.noteGiveUp(1, Duration(0));

    const Reply reply = ask(1, Purpose::Polled);

    EXPECT_EQ(reply.kind, Reply::Kind::NotAsked);
    EXPECT_EQ(reply.turnaround.count(), 0);
    EXPECT_FALSE(reply.canRetry);
    EXPECT_TRUE(stations.line.sent().isEmpty());
}

TEST_F(BreakerExchangeTest, APolledStrangerIsWaitedForLessFromTheSecondPolledStationOn)
{
    stations.dead = { 1 };

    const Reply oneOfTwo = ask(1, Purpose::Polled);
    breaker.setPolled({ 1 });
    const Reply alone = ask(1, Purpose::Polled);

    EXPECT_EQ(oneOfTwo.turnaround, milliseconds(8 + 500 + 7));
    EXPECT_EQ(alone.turnaround, milliseconds(8 + 3000 + 7));
}

TEST_F(BreakerExchangeTest, APolledReadWaitsForWhoeverIsInAHurry)
{
    guard.setHurry([] { return true; });

    EXPECT_EQ(ask(1, Purpose::Polled).kind, Reply::Kind::Withheld);
    EXPECT_TRUE(stations.line.sent().isEmpty());
}

TEST_F(BreakerExchangeTest, APolledReadWithoutAnAnswerIsTriedAgainWhereTheStationAnsweredBefore)
{
    breaker.noteAnswer(2, Duration(0));
    stations.dead = { 1, 2 };

    EXPECT_FALSE(ask(1, Purpose::Polled).canRetry) << "never heard";
    EXPECT_TRUE(ask(2, Purpose::Polled).canRetry);
}

TEST_F(BreakerExchangeTest, APolledReadWithADamagedAnswerIsTriedAgainInAnyCase)
{
    stations.changes = { instead(QByteArray::fromHex("01 03 02 00 00 00 00")) };

    const Reply reply = ask(1, Purpose::Polled);

    EXPECT_EQ(reply.kind, Reply::Kind::Incomplete);
    EXPECT_TRUE(reply.canRetry);
}

namespace {

/// Station 1 answers, 2 is left alone, and so is 3, whose probe has been due for long.
class ProbesBesideTheLiving : public BreakerExchangeTest {
protected:
    ProbesBesideTheLiving()
    {
        breaker.setPolled({ 1, 2, 3 });
        breaker.noteAnswer(1, Duration(0));
        breaker.noteGiveUp(2, Duration(0));
        breaker.noteGiveUp(3, Duration(0));
        stations.line.advance(seconds(5));
    }
};

} // namespace

TEST_F(ProbesBesideTheLiving, LeaveThemThreeTimesWhatAFailedOneTook)
{
    stations.dead = { 2 };

    const Reply reply = exchange.probe(2);

    EXPECT_EQ(reply.turnaround, milliseconds(8 + 100 + 7));
    EXPECT_EQ(breaker.nextProbe(), stations.line.now() + milliseconds(345));
}

TEST_F(ProbesBesideTheLiving, AreUrgentWritesToo)
{
    stations.dead = { 2 };
    allowance.timeout = milliseconds(50);

    const Reply reply = ask(2, Purpose::Bounded);

    EXPECT_EQ(reply.turnaround, milliseconds(8 + 50 + 7));
    EXPECT_EQ(breaker.nextProbe(), stations.line.now() + milliseconds(195));
}

TEST_F(ProbesBesideTheLiving, TakeNothingFromOthersWhereTheyAreAnswered)
{
    exchange.probe(2);
    EXPECT_EQ(breaker.nextProbe(), seconds(1)) << "that of 3";

    breaker.noteGiveUp(2, Duration(0));
    breaker.noteGiveUp(2, Duration(0));
    ask(2, Purpose::Bounded);

    EXPECT_EQ(breaker.nextProbe(), seconds(1));
    EXPECT_FALSE(breaker.isLeftAlone(2));
}

TEST_F(BreakerExchangeTest, AFailedTryOfAStationThatIsNotLeftAloneIsNoProbe)
{
    breaker.noteAnswer(1, Duration(0));
    breaker.noteGiveUp(2, Duration(0));
    stations.dead = { 1 };

    ask(1, Purpose::Bounded);

    EXPECT_EQ(breaker.nextProbe(), seconds(1));
}

TEST_F(BreakerExchangeTest, ALateReplyThatIsListenedToIsASignOfLife)
{
    stations.dead = { 1 };
    ask(1, Purpose::Polled);
    breaker.noteGiveUp(1, stations.line.now());
    stations.line.inject(framed("01 03 02 00 00"));
    stations.line.advance(milliseconds(10));

    exchange.listen();

    EXPECT_FALSE(breaker.isInDoubt(1));
    EXPECT_EQ(breaker.nextProbe(), stations.line.now());
}
