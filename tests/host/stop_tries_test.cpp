// SPDX-License-Identifier: MIT
// What follows a try to stop a station: when the next one is made, and of which stations.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr int somebodyElse = 7; // tag of a write that is not the stop's

LinkSettings oneTry()
{
    LinkSettings settings;
    settings.retryLimit = 1;
    return settings;
}

/// Gives each request the reply and the report that a test wants.
class ToldExchange : public Exchange {
public:
    Reply run(const FRAME_PRO &) override { return { Reply::Kind::Complete, bytes, true, {} }; }
    const ExchangeReport &report() const override { return told; }

    QByteArray bytes;
    ExchangeReport told;
};

/// Stops of two stations: a request takes 10 ms and a living station answers within 50 ms.
class StopTries : public ::testing::Test {
protected:
    StopTries()
    {
        outlook.living = milliseconds(50);
        outlook.timeout = seconds(20);
        outlook.request = milliseconds(10);
    }

    /// Has the driver's next request end by these bytes and this cause.
    void exchangeOnce(const QByteArray &bytes, ReplyCause cause, Duration now)
    {
        exchange.bytes = bytes;
        exchange.told.verdict.cause = cause;
        const Cycle::Step step = cycle.step();
        stop.afterStep(cycle, step, exchange.report(), now);
    }

    /// The next stop is this station's, and it brings no answer.
    void fail(int station, Duration now, ReplyCause cause = ReplyCause::Silence)
    {
        ASSERT_TRUE(stop.prepareNext(now));
        stop.takeAllowance(station);
        exchangeOnce({}, cause, now);
        ASSERT_EQ(cycle.request().var.station, station);
    }

    /// The next stop is this station's, and it cannot be sent.
    void withhold(int station, Duration now)
    {
        ASSERT_TRUE(stop.prepareNext(now));
        FRAME_PRO request;
        ASSERT_TRUE(link.nextFrame(request));
        ASSERT_EQ(request.var.station, station);
        stop.takeAllowance(station);
        link.handReply(QByteArray());
        stop.noteWithheld(station, now);
    }

    /// Somebody else writes the stop of station 1, and it is echoed.
    void confirmFirst(Duration now)
    {
        link.write(1, QStringLiteral("CW"), 0, { 6 }, somebodyElse);
        exchangeOnce(framed("01 06 10 01 00 06"), ReplyCause::Good, now);
    }

    /// Station 1 is asked for its status word.
    void readFirst(const QByteArray &reply, ReplyCause cause, Duration now)
    {
        link.addConditionRead(1, QStringLiteral("SW"), 0, 1, somebodyElse);
        exchangeOnce(reply, cause, now);
    }

    StopOutlook outlook;
    Link link { privateCopy(), oneTry() };
    ToldExchange exchange;
    Cycle cycle { link, exchange };
    SafeStop stop { link, { { 1, 6 }, { 2, 6 } }, [this](int) { return outlook; } };
};

} // namespace

TEST_F(StopTries, BeginAnewOnceTheLineIsBack)
{
    stop.begin(Duration { 0 }, seconds(10));
    fail(1, Duration { 0 }, ReplyCause::Exception);
    withhold(2, Duration { 0 });
    withhold(2, milliseconds(200));
    withhold(1, milliseconds(200));
    ASSERT_EQ(stop.nextTry(milliseconds(200)), milliseconds(600)) << "the pause is 400 ms by now";

    stop.resume(seconds(1), seconds(3));

    EXPECT_TRUE(stop.isPassing());
    withhold(1, seconds(1));
    withhold(2, seconds(1));
    EXPECT_EQ(stop.nextTry(seconds(1)), milliseconds(1200)) << "the first pause again";
    stop.noteSignOfLife(1);
    EXPECT_EQ(stop.nextTry(seconds(1)), Duration { 0 }) << "that it rejected one is forgotten";
}

TEST_F(StopTries, PassOverAStationThatSomebodyElseStopped)
{
    stop.begin(Duration { 0 }, seconds(10));

    confirmFirst(Duration { 0 });

    EXPECT_FALSE(stop.isPending(1));
    fail(2, milliseconds(10));
    EXPECT_EQ(stop.unconfirmed(), QVector<int> { 2 });
}

TEST_F(StopTries, OfAStationThatSomebodyElseStoppedDelayNobodysWhenTheyAreWithheld)
{
    stop.begin(Duration { 0 }, seconds(10));
    withhold(1, Duration { 0 });
    withhold(2, Duration { 0 });
    confirmFirst(milliseconds(50));

    stop.noteWithheld(1, milliseconds(60));

    EXPECT_EQ(stop.nextTry(milliseconds(60)), milliseconds(200));
}

TEST_F(StopTries, ThatFailOnceTheStopIsGivenUpLeaveTheNextStopWhole)
{
    stop.begin(Duration { 0 }, Duration { 0 });
    fail(1, Duration { 0 });
    fail(2, Duration { 0 });
    stop.repeat(1);
    stop.cancel();

    exchangeOnce({}, ReplyCause::Silence, seconds(1));

    EXPECT_FALSE(stop.isPending());
    stop.begin(seconds(2), Duration { 0 });
    EXPECT_EQ(stop.unconfirmed(), (QVector<int> { 1, 2 }));
}

TEST_F(StopTries, ThatBroughtNothingAreRepeatedBehindAPause)
{
    stop.begin(Duration { 0 }, seconds(10));

    fail(1, Duration { 0 });
    fail(2, Duration { 0 });

    EXPECT_EQ(stop.nextTry(Duration { 0 }), milliseconds(200));
}

TEST_F(StopTries, OfThePatientLeaveTimeForTwoExchangesWithAStationThatIsUnproven)
{
    stop.begin(Duration { 0 }, seconds(10));
    exchange.told.echoStripped = true;
    fail(1, Duration { 0 });
    withhold(2, Duration { 0 });
    stop.noteSignOfLife(2);

    ASSERT_TRUE(stop.prepareNext(milliseconds(300)));

    EXPECT_EQ(stop.takeAllowance(2).timeout, milliseconds(9570)); // 9.7 s less 10 and 2 times 60 ms
}

TEST_F(StopTries, UseASignOfLifeUpWhetherTheyAreSentOrWithheld)
{
    for (const bool isSent : { false, true }) {
        stop.begin(Duration { 0 }, seconds(10));
        fail(1, Duration { 0 });
        fail(2, Duration { 0 });
        stop.noteSignOfLife(1);

        if (isSent)
            fail(1, milliseconds(10));
        else
            withhold(1, milliseconds(10));
        withhold(2, milliseconds(10));

        EXPECT_EQ(stop.nextTry(milliseconds(10)), milliseconds(410)) << isSent;
    }
}

TEST_F(StopTries, AreMadeAtOnceOfAStationThatAnswersARead)
{
    stop.begin(Duration { 0 }, Duration { 0 });
    fail(1, Duration { 0 });
    fail(2, Duration { 0 });

    readFirst({}, ReplyCause::Silence, milliseconds(10));
    const auto silent = stop.due(milliseconds(10));
    readFirst(framed("01 03 02 00 05"), ReplyCause::Good, milliseconds(20));

    EXPECT_EQ(silent, std::nullopt);
    EXPECT_EQ(stop.due(milliseconds(20)), std::optional<int>(1));
}

TEST_F(StopTries, LeaveWritesToWaitThatStandBehindTheOneWhosePlaceTheyTake)
{
    for (const char *const type : { "F", "CW", "FRE" })
        link.write(1, QString::fromLatin1(type), 0, { 7 }, somebodyElse);
    stop.begin(Duration { 0 }, seconds(10));

    ASSERT_TRUE(stop.prepareNext(Duration { 0 }));

    EXPECT_EQ(link.waitingWrites(), 2);
    EXPECT_FALSE(link.registerState(1, QStringLiteral("F"), 0).writePending);
    EXPECT_TRUE(link.registerState(1, QStringLiteral("FRE"), 0).writePending);
}
