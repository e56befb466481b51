// SPDX-License-Identifier: MIT
// When a copy of a request is the adapter's, and when it is the reply.
#include "owed_fixture.h"

using namespace dx4::host;

TEST_F(OwedRepliesTest, ARequestThatComesBackIsAnEcho)
{
    send(readA);

    EXPECT_EQ(hear("01 03 D0 00 00 02"), "echo");
    EXPECT_TRUE(claim.isOfCurrent);
    EXPECT_EQ(hear(replyOfTwo), "own");
}

TEST_F(OwedRepliesTest, TheEchoOfAWriteOfSeveralIsLongerThanItsReply)
{
    send(writeMany("00 07 00 08", 1));

    EXPECT_EQ(hear("01 10 F0 00 00 02 04 00 07 00 08"), "echo");
    EXPECT_EQ(hear(runMany), "own");
}

TEST_F(OwedRepliesTest, AnEchoOfAnEarlierRequestIsNotOfTheOneInHand)
{
    sendInVain(readA);
    send(readOfThree);

    EXPECT_EQ(hear("01 03 D0 00 00 02"), "echo");
    EXPECT_FALSE(claim.isOfCurrent);
}

TEST_F(OwedRepliesTest, OneCopyOfASingleWriteProvesNothingWhereAnAdapterMayEcho)
{
    send(run(1), true);

    EXPECT_EQ(hear(runHex), "echo");
    EXPECT_TRUE(claim.isOfCurrent);
    EXPECT_EQ(hear(runHex), "own");
    EXPECT_EQ(hear(runHex), "unowed");
}

TEST_F(OwedRepliesTest, OneCopyOfASingleWriteIsItsReplyWhereNoAdapterEchoes)
{
    send(run(1), false);

    EXPECT_EQ(hear(runHex), "own");
}

TEST_F(OwedRepliesTest, AsManyCopiesAsTriesProveNothingAndOneMoreDoes)
{
    sendInVain(run(1), true);
    sendInVain(run(1), true);
    send(run(1), true);

    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "own?");
}

TEST_F(OwedRepliesTest, OnlyTriesSinceAnEchoWasThoughtOfMayComeBack)
{
    sendInVain(run(1), false);
    sendInVain(run(1), true);
    send(run(1), true);

    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "own?");
}

TEST_F(OwedRepliesTest, ACopyAmongWritesOfOneValueIsTheOldestEcho)
{
    sendInVain(run(1), true);
    send(run(2), true);

    EXPECT_EQ(hear(runHex), "echo");
    EXPECT_FALSE(claim.isOfCurrent);
    EXPECT_EQ(hear(runHex), "echo");
    EXPECT_TRUE(claim.isOfCurrent);
    EXPECT_EQ(hear(runHex), "late?");
    EXPECT_EQ(hear(runHex), "own");
}

TEST_F(OwedRepliesTest, AnEchoSettlesTheEchoesOfAllBeforeIt)
{
    sendInVain(run(1), true);
    send(statusOfTwo, true);

    EXPECT_EQ(hear("02 03 20 00 00 01"), "echo");
    EXPECT_EQ(hear(runHex), "late") << "no echo any more, so it is the reply";
}

TEST_F(OwedRepliesTest, AReplySettlesTheEchoesOfAllBeforeIt)
{
    sendInVain(run(1), true);
    send(statusOfTwo, true);

    EXPECT_EQ(hear(replyOfStationTwo), "own");
    EXPECT_EQ(hear(runHex), "late") << "no echo any more, so it is the reply";
}

TEST_F(OwedRepliesTest, AReplySettlesNoEchoOfWhatWentOutAfterItsRequest)
{
    sendInVain(statusOfTwo, true);
    send(run(1), true);

    EXPECT_EQ(hear(replyOfStationTwo), "late");
    EXPECT_EQ(hear(runHex), "echo");
    EXPECT_EQ(hear(runHex), "own");
}

TEST_F(OwedRepliesTest, AnEchoSettlesNoneOfTriesOfWhichSomeWentOutAfterIt)
{
    sendInVain(run(1), true);
    sendInVain(statusOfTwo, true);
    send(run(1), true);

    EXPECT_EQ(hear("02 03 20 00 00 01"), "echo");
    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "own?");
}

TEST_F(OwedRepliesTest, ARefusedTryBringsNoEchoAnyMore)
{
    sendInVain(run(1), true);
    sendInVain(run(1), true);
    sendInVain(run(1), true);
    hear("01 86 04");
    send(readOfThree);

    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "late?");
    EXPECT_EQ(hear(runHex), "late");
    EXPECT_EQ(hear(runHex), "unowed");
}

TEST_F(OwedRepliesTest, WritesThatWaitMayComeBackOnceAnAdapterHasEchoed)
{
    send(run(1), false);
    owed.expectEchoes();

    EXPECT_EQ(hear(runHex), "echo");
    EXPECT_EQ(hear(runHex), "own");
}

TEST_F(OwedRepliesTest, EachOfSeveralTriesMayComeBackOnceAnAdapterHasEchoed)
{
    sendInVain(run(1), false);
    send(run(1), false);
    owed.expectEchoes();

    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "echo?");
    EXPECT_EQ(hear(runHex), "own?");
}

TEST_F(OwedRepliesTest, NobodyAnswersABroadcast)
{
    const std::string stop = "00 06 10 01 00 00";
    FRAME_PRO broadcast = asked(stop);
    broadcast.replyLength = 0;
    send(broadcast, true);

    EXPECT_EQ(hear("00 86 02"), "unowed");
    EXPECT_EQ(hear(stop), "echo");
    EXPECT_EQ(hear(stop), "unowed");
}
