// SPDX-License-Identifier: MIT
// When a station is waited for longer, how long, and what is said of it.
#include "host/exchange/answer_times.h"

#include <gtest/gtest.h>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

constexpr char raisedTo200[] = "station 1 answers later than the response timeout of 100 ms; it is "
                               "waited for 200 ms from now on, and timeout_ms had better be that";

/// The line's timeout is 100 ms; answers are of station 1.
class AnswerTimesTest : public ::testing::Test {
protected:
    void answer(int times, int delay, bool sure = true)
    {
        for (int i = 0; i < times; ++i)
            answers.noteAnswer(1, milliseconds(delay), sure);
    }

    std::string notice() { return answers.takeNotice().toStdString(); }

    AnswerTimes answers { milliseconds(100) };
};

} // namespace

TEST_F(AnswerTimesTest, AStationThatWasNotHeardHasTheTimeoutOfTheLine)
{
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));
    EXPECT_EQ(answers.slowestOf(1), std::nullopt);
    EXPECT_FALSE(answers.isSlow(1));
    EXPECT_EQ(notice(), "");
}

TEST_F(AnswerTimesTest, ThreeLateOnesInARowRaiseTheTimeoutToTheSlowestAndAQuarter)
{
    answer(1, 150);
    answer(1, 160);
    answer(1, 155);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));
    EXPECT_TRUE(answers.isSlow(1));
    EXPECT_EQ(notice(), raisedTo200);
}

TEST_F(AnswerTimesTest, ANoticeIsGivenOnce)
{
    answer(3, 160);
    notice();

    EXPECT_EQ(notice(), "");
}

TEST_F(AnswerTimesTest, TwoLateOnesRaiseNothing)
{
    answer(2, 160);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));
    EXPECT_EQ(notice(), "");
}

TEST_F(AnswerTimesTest, APromptOneInBetweenBeginsAnew)
{
    answer(2, 700);
    answer(1, 100); // the timeout itself is in time
    answer(2, 160);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));

    answer(1, 160);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200)) << "the 700 ms are forgotten";
}

TEST_F(AnswerTimesTest, WhichRequestWasAnsweredNeedNotBeSureToRaise)
{
    answer(3, 160, false);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));
    EXPECT_EQ(notice(), raisedTo200);
}

TEST_F(AnswerTimesTest, WhatIsLearntEndsAtEightTimeouts)
{
    answer(3, 640);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(800));
    notice();

    answer(3, 2000);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(800));
    EXPECT_EQ(notice(), "") << "nothing has changed";
}

TEST_F(AnswerTimesTest, OneThatIsSlowerThanTheBoundIsWaitedForUpToIt)
{
    answer(3, 641);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(800));
    EXPECT_EQ(notice(),
              "station 1 answers later than the response timeout of 100 ms; it is waited for 800 "
              "ms from now on, and timeout_ms had better be that");
}

TEST_F(AnswerTimesTest, OneThatIsLateForWhatWasLearntRaisesItAgain)
{
    answer(3, 160);
    notice();
    answer(3, 200); // in time
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));

    answer(3, 250);
    EXPECT_EQ(answers.timeoutOf(1), Duration(312500));
    EXPECT_EQ(notice(),
              "station 1 answers later than the response timeout of 100 ms; it is waited for 312.5 "
              "ms from now on, and timeout_ms had better be that");
}

TEST_F(AnswerTimesTest, ItTakesThreeLateOnesToRaiseItEachTime)
{
    answer(3, 160);
    answer(2, 250);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));

    answer(1, 250);
    EXPECT_EQ(answers.timeoutOf(1), Duration(312500));
}

TEST_F(AnswerTimesTest, StationsAreLearntApart)
{
    answer(2, 160);
    answers.noteAnswer(2, milliseconds(160), true);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));
    EXPECT_EQ(answers.timeoutOf(2), milliseconds(100));
    EXPECT_EQ(answers.slowestOf(2), milliseconds(160));
    EXPECT_EQ(answers.slowestOf(3), std::nullopt);
}

TEST_F(AnswerTimesTest, TheSlowestOneLosesASixteenthWithEachAnswer)
{
    answer(1, 80);
    EXPECT_EQ(answers.slowestOf(1), milliseconds(80));

    answer(1, 10);
    EXPECT_EQ(answers.slowestOf(1), milliseconds(75));

    answer(1, 78);
    EXPECT_EQ(answers.slowestOf(1), milliseconds(78));
}

TEST_F(AnswerTimesTest, AnAnswerThatMayBeOfAnEarlierRequestIsNoSlowestOne)
{
    answer(1, 80, false);
    EXPECT_EQ(answers.slowestOf(1), std::nullopt);

    answer(1, 10);
    answer(1, 80, false);
    EXPECT_EQ(answers.slowestOf(1), milliseconds(10));
}

TEST_F(AnswerTimesTest, ThirtyTwoPromptOnesInARowLowerTheTimeoutToThatOfTheLine)
{
    answer(3, 160);
    notice();
    answer(31, 10);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));

    answer(1, 10);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));
    EXPECT_FALSE(answers.isSlow(1));
    EXPECT_EQ(notice(), "station 1 is quicker again; it is waited for 100 ms from now on");
}

TEST_F(AnswerTimesTest, TheTimeoutStaysTwiceTheSlowestOne)
{
    answer(3, 160);
    notice();
    answer(32, 70);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(140));
    EXPECT_EQ(notice(), "station 1 is quicker again; it is waited for 140 ms from now on");
}

TEST_F(AnswerTimesTest, OneThatNeedsHalfOfWhatWasLearntKeepsIt)
{
    answer(3, 160);
    notice();
    answer(32, 100);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));
    EXPECT_EQ(notice(), "");
}

TEST_F(AnswerTimesTest, ThirtyTwoMoreAreNeededToLowerItOnceMore)
{
    answer(3, 160);
    answer(32, 70);
    const Duration lowered = answers.timeoutOf(1);

    answer(31, 10);
    const Duration kept = answers.timeoutOf(1);
    answer(1, 10);

    EXPECT_EQ(lowered, milliseconds(140));
    EXPECT_EQ(kept, milliseconds(140));
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));
}

TEST_F(AnswerTimesTest, ALateOneInBetweenPutsLoweringOff)
{
    answer(3, 160);
    notice();
    answer(31, 10);
    answer(1, 201);
    answer(31, 10);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));
    EXPECT_EQ(notice(), "");
}

TEST_F(AnswerTimesTest, ALateOneThatMayBeOfAnEarlierRequestPutsLoweringOffToo)
{
    answer(3, 160);
    answer(31, 10);
    answer(1, 201, false);
    answer(31, 10);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));

    answer(1, 10);
    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));
}

TEST_F(AnswerTimesTest, AnAnswerThatMayBeOfAnEarlierRequestLowersNothing)
{
    answer(3, 160);
    notice();
    answer(100, 10, false);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(200));
}

TEST_F(AnswerTimesTest, OneThatWasNeverSlowHasNothingToLower)
{
    answer(100, 10);

    EXPECT_EQ(answers.timeoutOf(1), milliseconds(100));
    EXPECT_EQ(notice(), "");
}
