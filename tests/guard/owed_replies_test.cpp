// SPDX-License-Identifier: MIT
// What a frame settles of all that is owed.
#include "owed_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;

TEST_F(OwedRepliesTest, TheAnswerToNothingButTheRequestInHandIsItsOwn)
{
    send(readA);

    EXPECT_EQ(hear(replyOfTwo), "own");
    EXPECT_EQ(claim.asked, Duration(milliseconds(10)));
    EXPECT_FALSE(claim.isOfCurrent);
}

TEST_F(OwedRepliesTest, WhatNobodyWasAskedForIsUnowed)
{
    send(readA);

    EXPECT_EQ(hear(replyOfStationTwo), "unowed");
    EXPECT_EQ(hear(replyOfThree), "unowed");
    EXPECT_EQ(hear("01 04 04 12 34 56 78"), "unowed");
    EXPECT_EQ(hear("01 03 05 12 34 56 78"), "unowed") << "its byte count is another one's";
    EXPECT_EQ(hear("01 83 02 00"), "unowed") << "too long for a refusal";
    EXPECT_EQ(hear("01 86 02"), "unowed");
    EXPECT_EQ(hear(runHex), "unowed");
    EXPECT_EQ(claim.asked, std::nullopt);
    EXPECT_EQ(hear(replyOfTwo), "own");
}

TEST_F(OwedRepliesTest, WhatWasAnsweredIsOwedNoMore)
{
    send(readA);
    hear(replyOfTwo);

    EXPECT_EQ(hear(replyOfTwo), "unowed");
    EXPECT_FALSE(owed.wasLast(readA));
}

TEST_F(OwedRepliesTest, OfAnAbandonedRequestTheReplyIsLate)
{
    sendInVain(readA);

    EXPECT_EQ(hear(replyOfTwo), "late");
    EXPECT_EQ(hear(replyOfTwo), "unowed");
}

TEST_F(OwedRepliesTest, AReplyThatMayBeAnEarlierRequestsIsLateAndSettlesThatOne)
{
    sendInVain(readA);
    send(readB);

    EXPECT_EQ(hear(replyOfTwo), "late?");
    EXPECT_EQ(claim.asked, Duration(milliseconds(10)));
    EXPECT_EQ(hear(replyOfTwo), "own");
    EXPECT_EQ(claim.asked, Duration(milliseconds(20)));
}

TEST_F(OwedRepliesTest, AnAnswerSettlesAllThatItsStationWasAskedBefore)
{
    sendInVain(readA);
    sendInVain(readB);
    sendInVain(run(1));
    send(readOfThree);

    EXPECT_EQ(hear(replyOfThree), "own");
    EXPECT_EQ(hear(replyOfTwo), "unowed");
    EXPECT_EQ(hear(runHex), "unowed");
}

TEST_F(OwedRepliesTest, ALateAnswerSettlesNothingThatWasAskedAfterIt)
{
    sendInVain(readOfThree);
    sendInVain(readA);
    send(readB);

    EXPECT_EQ(hear(replyOfThree), "late");
    EXPECT_EQ(hear(replyOfTwo), "late?");
    EXPECT_EQ(hear(replyOfTwo), "own");
}

TEST_F(OwedRepliesTest, AnAnswerSettlesNothingOfAnotherStation)
{
    sendInVain(readA);
    send(statusOfTwo);

    EXPECT_EQ(hear(replyOfStationTwo), "own");
    EXPECT_EQ(hear(replyOfTwo), "late");
}

TEST_F(OwedRepliesTest, AReplyIsLateWhileAnotherStationIsAsked)
{
    sendInVain(readA);
    send(statusOfTwo);

    EXPECT_EQ(hear(replyOfTwo), "late");
    EXPECT_EQ(hear(replyOfStationTwo), "own");
}

TEST_F(OwedRepliesTest, AnyOfTheRepliesToEqualReadsMeansTheSame)
{
    sendInVain(readA);
    sendInVain(readA);
    send(readA);

    EXPECT_EQ(hear(replyOfTwo), "own?");
    EXPECT_EQ(claim.asked, Duration(milliseconds(10)));
}

TEST_F(OwedRepliesTest, AsManyRepliesMayComeAsEqualReadsWentOut)
{
    sendInVain(readA);
    sendInVain(readA);
    sendInVain(readA);

    EXPECT_EQ(hear(replyOfTwo), "late?");
    EXPECT_EQ(hear(replyOfTwo), "late?");
    EXPECT_EQ(claim.asked, Duration(milliseconds(20)));
    EXPECT_EQ(hear(replyOfTwo), "late");
    EXPECT_EQ(claim.asked, Duration(milliseconds(30)));
    EXPECT_EQ(hear(replyOfTwo), "unowed");
}

TEST_F(OwedRepliesTest, OfManyEqualReadsTheTimesOfSixteenAreKept)
{
    for (int i = 0; i < 17; ++i)
        sendInVain(readA);
    for (int i = 0; i < 16; ++i)
        hear(replyOfTwo);
    const auto sixteenth = claim.asked;

    EXPECT_EQ(hear(replyOfTwo), "late");
    EXPECT_EQ(sixteenth, Duration(milliseconds(160)));
    EXPECT_EQ(claim.asked, std::nullopt);
}

TEST_F(OwedRepliesTest, AReadInBetweenDoesNotPartEqualReads)
{
    sendInVain(readA);
    sendInVain(readOfThree);
    send(readA);

    EXPECT_EQ(hear(replyOfTwo), "own?");
    EXPECT_EQ(hear(replyOfThree), "late");
    EXPECT_EQ(hear(replyOfTwo), "own");
}

TEST_F(OwedRepliesTest, AReadOfEqualLengthInBetweenMayBeTheOneAnswered)
{
    sendInVain(readA);
    sendInVain(readB);
    send(readA);

    EXPECT_EQ(hear(replyOfTwo), "late?");
    EXPECT_EQ(hear(replyOfTwo), "late?");
    EXPECT_EQ(hear(replyOfTwo), "own");
}

TEST_F(OwedRepliesTest, AWriteInBetweenMakesAnEarlierEqualReadStale)
{
    sendInVain(readA);
    sendInVain(run(1));
    send(readA);

    EXPECT_EQ(hear(replyOfTwo), "late?");
    EXPECT_EQ(hear(runHex), "late");
    EXPECT_EQ(hear(replyOfTwo), "own");
}

TEST_F(OwedRepliesTest, AWriteBeforeBothDoesNotPartEqualReads)
{
    sendInVain(run(1));
    sendInVain(readA);
    sendInVain(readOfThree);
    send(readA);

    EXPECT_EQ(hear(replyOfTwo), "own?");
}

TEST_F(OwedRepliesTest, TriesOfOneWriteHaveItsTag)
{
    sendInVain(run(1));
    send(run(1));

    EXPECT_EQ(hear(runHex), "own?");
}

TEST_F(OwedRepliesTest, AnotherWriteOfTheSameValueIsAnotherOne)
{
    sendInVain(run(1));
    send(run(2));

    EXPECT_EQ(hear(runHex), "late?");
    EXPECT_EQ(hear(runHex), "own");
}

TEST_F(OwedRepliesTest, AReadWithAnotherTagIsTheSame)
{
    sendInVain(asked("01 03 D0 00 00 02", 1));
    send(asked("01 03 D0 00 00 02", 2));

    EXPECT_EQ(hear(replyOfTwo), "own?");
}

TEST_F(OwedRepliesTest, AWriteOfAnotherValueIsToldByItsReply)
{
    sendInVain(asked("01 06 10 01 00 00", 1));
    send(run(2));

    EXPECT_EQ(hear(runHex), "own");
}

TEST_F(OwedRepliesTest, TheReplyToAWriteOfSeveralDoesNotTellItsValues)
{
    sendInVain(writeMany("00 07 00 08", 1));
    send(writeMany("00 09 00 0A", 2));

    EXPECT_EQ(hear(runMany), "late?");
    EXPECT_EQ(hear(runMany), "own");
}

TEST_F(OwedRepliesTest, TheReplyToAWriteOfOtherRegistersIsTold)
{
    sendInVain(asked("01 10 F0 02 00 02 04 00 07 00 08", 1));
    send(writeMany("00 07 00 08", 2));

    EXPECT_EQ(hear(runMany), "own");
}

TEST_F(OwedRepliesTest, TriesOfAWriteOfSeveralMeanTheSame)
{
    sendInVain(writeMany("00 07 00 08", 1));
    send(writeMany("00 07 00 08", 1));

    EXPECT_EQ(hear(runMany), "own?");
}

TEST_F(OwedRepliesTest, ARefusalOfTheOnlyRequestOfItsFunctionIsItsOwn)
{
    sendInVain(run(1));
    send(readA);

    EXPECT_EQ(hear(refusal), "own");
    EXPECT_EQ(hear("01 86 02"), "unowed") << "the read came after the write";
}

TEST_F(OwedRepliesTest, ARefusalThatMayBeOfAnEarlierRequestIsLate)
{
    sendInVain(readOfThree);
    send(readA);

    EXPECT_EQ(hear(refusal), "late?");
    EXPECT_EQ(hear(refusal), "own");
}

TEST_F(OwedRepliesTest, ARefusalOfAnEqualReadMeansTheSame)
{
    sendInVain(readA);
    send(readA);

    EXPECT_EQ(hear(refusal), "own?");
}

TEST_F(OwedRepliesTest, ALateRefusalRejectsNoOtherWrite)
{
    sendInVain(asked("01 06 F0 0F 00 07", 1));
    send(run(2));

    EXPECT_EQ(hear("01 86 02"), "late?");
    EXPECT_EQ(hear(runHex), "own");
}
