// SPDX-License-Identifier: MIT
// How long each stop may wait for its echo, so that every station has its turn within the budget.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

LinkSettings oneTry()
{
    LinkSettings settings;
    settings.retryLimit = 1;
    return settings;
}

/// A line on which nobody answers.
class SilentExchange : public Exchange {
public:
    Reply run(const FRAME_PRO &) override
    {
        return { Reply::Kind::Silence, {}, true, milliseconds(100) };
    }
    const ExchangeReport &report() const override { return told; }

    ExchangeReport told;
};

/// Stops of two stations: a request takes 10 ms and a living station answers within 50 ms.
class StopAllowances : public ::testing::Test {
protected:
    StopAllowances()
    {
        outlook.living = milliseconds(50);
        outlook.timeout = seconds(20);
        outlook.repeat = milliseconds(70);
        outlook.request = milliseconds(10);
    }

    /// Sends the next stop and has it fail.
    ///
    /// @return its station; 0 when none is due
    int next(Duration now)
    {
        if (!stop.prepareNext(now))
            return 0;
        FRAME_PRO request;
        EXPECT_TRUE(link.nextFrame(request));
        given = stop.takeAllowance(request.var.station);
        link.handReply(QByteArray());
        return request.var.station;
    }

    /// The same, and the station could not be asked.
    void withhold(int station, Duration now)
    {
        EXPECT_EQ(next(now), station);
        stop.noteWithheld(station, now);
    }

    StopOutlook outlook;
    Link link { privateCopy(), oneTry() };
    SafeStop stop { link, { { 1, 6 }, { 2, 6 } }, [this](int) { return outlook; } };
    Allowance given;
};

} // namespace

TEST_F(StopAllowances, InThePassAreAQuarterOfTheShareOfWhatIsLeftBesideTheRequests)
{
    stop.begin(Duration { 0 }, seconds(10));

    EXPECT_EQ(next(Duration { 0 }), 1);
    EXPECT_EQ(given.timeout, microseconds(1247500)); // (10 s - 20 ms) / 2 / 4
    EXPECT_EQ(given.until, milliseconds(5000));
    EXPECT_TRUE(given.isUrgent);
    EXPECT_EQ(next(seconds(2)), 2);
    EXPECT_EQ(given.timeout, microseconds(1997500)); // (8 s - 10 ms) / 4
    EXPECT_EQ(given.until, milliseconds(10000));
}

TEST_F(StopAllowances, InThePassAreWhatALivingStationTakesWhereTheQuarterIsLess)
{
    stop.begin(Duration { 0 }, milliseconds(220));

    EXPECT_EQ(next(Duration { 0 }), 1);
    EXPECT_EQ(given.timeout, milliseconds(50));
    EXPECT_EQ(given.until, milliseconds(110));
}

TEST_F(StopAllowances, InThePassAreTheWholeShareWhereThatIsLessStill)
{
    stop.begin(Duration { 0 }, milliseconds(100));

    EXPECT_EQ(next(Duration { 0 }), 1);
    EXPECT_EQ(given.timeout, milliseconds(40));
    EXPECT_EQ(given.until, milliseconds(50));
}

TEST_F(StopAllowances, OfALineThatIsBackAreOfWhatIsLeftAndOfAnotherBudgetOnceThatIsOver)
{
    stop.begin(Duration { 0 }, seconds(10));
    stop.resume(milliseconds(9999), seconds(3));
    EXPECT_EQ(next(milliseconds(9999)), 1);
    EXPECT_EQ(given.timeout, Duration { 0 }) << "less is left than two requests take";

    stop.resume(seconds(10), seconds(3));

    EXPECT_EQ(next(seconds(10)), 1);
    EXPECT_EQ(given.timeout, microseconds(372500)); // (3 s - 20 ms) / 2 / 4
    EXPECT_EQ(given.until, milliseconds(11500));
}

TEST_F(StopAllowances, AreNeverLongerThanTheResponseTimeout)
{
    outlook.timeout = milliseconds(45);
    stop.begin(Duration { 0 }, seconds(10));

    EXPECT_EQ(next(Duration { 0 }), 1);
    EXPECT_EQ(given.timeout, milliseconds(45));
}

TEST_F(StopAllowances, WithoutABudgetAreNothingAndEveryStationIsAskedAllTheSame)
{
    stop.begin(seconds(1), Duration { 0 });

    EXPECT_EQ(next(seconds(1)), 1);
    EXPECT_EQ(given.timeout, Duration { 0 });
    EXPECT_EQ(given.until, milliseconds(1010));
    EXPECT_EQ(next(milliseconds(1010)), 2);
    EXPECT_EQ(given.timeout, Duration { 0 });
    EXPECT_EQ(stop.isUrgent(milliseconds(1020)), false);
}

TEST_F(StopAllowances, InTheFirstRoundAreQuickAndTheOtherWayRound)
{
    stop.begin(Duration { 0 }, seconds(10));
    withhold(1, Duration { 0 });
    withhold(2, milliseconds(100));

    EXPECT_EQ(next(milliseconds(299)), 0) << "200 ms behind the pass";
    EXPECT_EQ(next(milliseconds(300)), 2);
    EXPECT_EQ(given.timeout, milliseconds(50));
    EXPECT_EQ(given.until, seconds(10));
    EXPECT_EQ(next(milliseconds(400)), 1);
    EXPECT_EQ(given.timeout, milliseconds(50));
}

TEST_F(StopAllowances, InLaterRoundsShareWhatIsLeftBesideOneQuickTryOfEveryOther)
{
    stop.begin(Duration { 0 }, seconds(10));
    withhold(1, Duration { 0 });
    withhold(2, milliseconds(100));
    withhold(2, milliseconds(300));
    withhold(1, milliseconds(500));

    EXPECT_EQ(next(milliseconds(899)), 0) << "400 ms behind the first round";
    EXPECT_EQ(next(milliseconds(900)), 1);
    EXPECT_EQ(given.timeout, milliseconds(4515)); // (9100 - 10 - 60) / 2
    EXPECT_EQ(given.until, seconds(10));
}

TEST_F(StopAllowances, AreNeverShorterInALaterRoundThanAQuickTry)
{
    stop.begin(Duration { 0 }, seconds(1));
    withhold(1, Duration { 0 });
    withhold(2, milliseconds(100));
    withhold(2, milliseconds(300));
    withhold(1, milliseconds(500));

    EXPECT_EQ(next(milliseconds(900)), 1);
    EXPECT_EQ(given.timeout, milliseconds(50));
}

TEST_F(StopAllowances, AreLongForAStationThatShowedLifeWhichComesFirstAndAtOnce)
{
    stop.begin(Duration { 0 }, seconds(10));
    withhold(1, Duration { 0 });
    withhold(2, milliseconds(100));

    stop.noteSignOfLife(1);

    EXPECT_EQ(stop.nextTry(milliseconds(110)), Duration { 0 });
    EXPECT_EQ(next(milliseconds(110)), 1);
    EXPECT_EQ(given.timeout,
              milliseconds(9820)); // all that is left beside a quick try of the other
}

TEST_F(StopAllowances, EndWhereNoRequestFitsIntoTheBudget)
{
    stop.begin(Duration { 0 }, seconds(10));
    withhold(1, Duration { 0 });
    withhold(2, milliseconds(100));

    EXPECT_EQ(next(milliseconds(9990)), 0);
    EXPECT_EQ(next(milliseconds(9989)), 2);
}

TEST_F(StopAllowances, OfARepeatBehindTheBudgetAreThoseOfTheOutlook)
{
    stop.begin(Duration { 0 }, Duration { 0 });
    next(Duration { 0 });

    const Allowance repeat = stop.takeAllowance(1);

    EXPECT_EQ(repeat.timeout, milliseconds(70));
    EXPECT_EQ(repeat.until, std::nullopt);
    EXPECT_FALSE(repeat.isUrgent);
}

TEST_F(StopAllowances, OfABroadcastAreATenthOfASecondWhereTheBudgetHasRoom)
{
    stop.setBroadcast(true);
    stop.begin(Duration { 0 }, seconds(1));

    EXPECT_EQ(stop.takeBroadcast(), std::optional<quint16>(6));
    EXPECT_EQ(stop.takeBroadcast(), std::nullopt) << "once for each stop";
    EXPECT_EQ(stop.broadcastAllowance(Duration { 0 }).timeout, milliseconds(100));
    EXPECT_EQ(stop.broadcastAllowance(Duration { 0 }).until, microseconds(333333));
    EXPECT_TRUE(stop.broadcastAllowance(Duration { 0 }).isUrgent);
}

TEST_F(StopAllowances, OfABroadcastAreTheShareOfOneStationMoreWhereItHasNone)
{
    stop.setBroadcast(true);
    stop.begin(Duration { 0 }, milliseconds(180));

    EXPECT_EQ(stop.broadcastAllowance(Duration { 0 }).timeout, milliseconds(50));
    EXPECT_EQ(stop.broadcastAllowance(Duration { 0 }).until, milliseconds(60));
    EXPECT_EQ(stop.broadcastAllowance(milliseconds(170)).timeout, Duration { 0 });
}

TEST_F(StopAllowances, LeaveWhatCouldNotBeAskedForTwentyMilliseconds)
{
    stop.begin(Duration { 0 }, Duration { 0 });
    withhold(1, Duration { 0 });
    withhold(2, Duration { 0 });

    EXPECT_EQ(stop.due(milliseconds(19)), std::nullopt);
    EXPECT_EQ(stop.nextTry(milliseconds(1)), milliseconds(20));
    EXPECT_EQ(stop.due(milliseconds(20)), std::optional<int>(1));
}

TEST_F(StopAllowances, OfAStopThatMayBeTheAdaptersCopyAreGivenAgainAtOnceButNotOnceItWasWithheld)
{
    SilentExchange exchange;
    exchange.told.echoStripped = true;
    Cycle cycle(link, exchange);
    SafeStop one(link, { { 1, 6 } }, [this](int) { return outlook; });
    one.begin(Duration { 0 }, seconds(10));
    one.prepareNext(Duration { 0 });
    one.takeAllowance(1);

    const Cycle::Step step = cycle.step();
    one.afterStep(cycle, step, exchange.report(), milliseconds(100));
    const auto unproven = one.nextTry(milliseconds(100));
    one.prepareNext(milliseconds(100));
    const bool learnsFirst = !one.takeAllowance(1).isUrgent;
    one.noteWithheld(1, milliseconds(110));

    EXPECT_EQ(unproven, milliseconds(100));
    EXPECT_TRUE(learnsFirst);
    EXPECT_EQ(one.nextTry(milliseconds(110)), milliseconds(510)) << "the pause of the second round";
}

TEST_F(StopAllowances, OfRepeatsAreForOneStationAtATime)
{
    stop.begin(Duration { 0 }, Duration { 0 });
    withhold(1, Duration { 0 });
    withhold(2, Duration { 0 });

    stop.repeat(1);
    stop.repeat(2);

    EXPECT_EQ(link.waitingWrites(), 1);
    EXPECT_EQ(stop.due(seconds(1)), std::nullopt) << "one waits";
}

TEST_F(StopAllowances, LeaveProbesOfAStationThatIsLeftAloneToTheBreaker)
{
    stop.begin(Duration { 0 }, Duration { 0 });
    withhold(1, Duration { 0 });
    withhold(2, Duration { 0 });
    outlook.isLeftAlone = true;

    EXPECT_EQ(stop.due(seconds(1)), std::nullopt);
    EXPECT_EQ(stop.nextTry(seconds(1)), std::nullopt);
}

TEST_F(StopAllowances, AreGivenToThoseThatAnswerFirstThenToThoseThatTurn)
{
    std::map<int, StopOutlook> outlooks;
    for (int station = 1; station <= 6; ++station)
        outlooks[station] = outlook;
    outlooks[1].lastAnswer = seconds(5);
    outlooks[1].isLeftAlone = true;
    outlooks[2].lastAnswer = seconds(3);
    outlooks[3].lastAnswer = seconds(6); // its cable was cut as it turned
    outlooks[3].isLeftAlone = true;
    outlooks[4].lastAnswer = seconds(4);
    outlooks[5].isLeftAlone = true;
    SafeStop plant(link, { { 1, 6 }, { 2, 6 }, { 3, 6 }, { 4, 6 }, { 5, 6 }, { 6, 6 } },
                   [&outlooks](int station) { return outlooks.at(station); });
    plant.noteCommand(3, 1);
    plant.noteCommand(6, 1);
    plant.noteCommand(2, 6);
    plant.begin(seconds(6), seconds(10));

    QVector<int> order;
    while (plant.isPassing() && plant.prepareNext(seconds(6))) {
        FRAME_PRO request;
        ASSERT_TRUE(link.nextFrame(request));
        order.append(request.var.station);
        link.handReply(QByteArray());
    }

    EXPECT_EQ(order, (QVector<int> { 4, 2, 3, 6, 1, 5 }));
}

TEST_F(StopAllowances, OfThePatientLeaveEveryOtherItsQuickTry)
{
    SafeStop plant(link, { { 1, 6 }, { 2, 6 }, { 3, 6 } }, [this](int) { return outlook; });
    plant.begin(Duration { 0 }, seconds(10));
    for (int station = 1; station <= 3; ++station) {
        FRAME_PRO request;
        EXPECT_TRUE(plant.prepareNext(Duration { 0 }) && link.nextFrame(request));
        link.handReply(QByteArray());
        plant.noteWithheld(station, Duration { 0 });
    }
    plant.noteSignOfLife(2);

    ASSERT_TRUE(plant.prepareNext(milliseconds(300)));

    const Allowance patient = plant.takeAllowance(2);
    EXPECT_EQ(patient.timeout, milliseconds(9570)); // 9.7 s less 10, 60 and 60 ms
    EXPECT_TRUE(patient.isUrgent);
}
