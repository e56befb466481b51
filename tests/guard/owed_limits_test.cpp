// SPDX-License-Identifier: MIT
// What may be asked while something is owed, and what is waited for how long.
#include "owed_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;

TEST_F(OwedRepliesTest, NothingMisleadsWhereNothingIsOwed)
{
    EXPECT_FALSE(owed.couldMislead(readA));
    EXPECT_TRUE(owed.isUnmistakable(readA));
}

TEST_F(OwedRepliesTest, AnotherReadOfEqualLengthMisleads)
{
    sendInVain(readA);

    EXPECT_TRUE(owed.couldMislead(readB));
    EXPECT_FALSE(owed.couldMislead(readA)) << "the same once more";
    EXPECT_FALSE(owed.couldMislead(readOfThree));
    EXPECT_FALSE(owed.couldMislead(run(1)));
    EXPECT_FALSE(owed.couldMislead(asked("02 03 D0 08 00 02"))) << "another station's";
}

TEST_F(OwedRepliesTest, WhatWasSettledMisleadsNobody)
{
    sendInVain(readA);
    sendInVain(readOfThree);
    hear(replyOfThree);

    EXPECT_FALSE(owed.couldMislead(readB));
}

TEST_F(OwedRepliesTest, AReadMisleadsItselfAcrossAWrite)
{
    sendInVain(readA);
    sendInVain(run(1));

    EXPECT_TRUE(owed.couldMislead(readA));
}

TEST_F(OwedRepliesTest, AReadDoesNotMisleadItselfAcrossAReadOfAnotherLength)
{
    sendInVain(run(1));
    sendInVain(readA);
    sendInVain(readOfThree);

    EXPECT_FALSE(owed.couldMislead(readA));
}

TEST_F(OwedRepliesTest, AReadOfEqualLengthInBetweenMisleads)
{
    sendInVain(readA);
    sendInVain(readB);

    EXPECT_TRUE(owed.couldMislead(readA));
}

TEST_F(OwedRepliesTest, AnotherWriteOfTheSameValueMisleads)
{
    sendInVain(run(1));

    EXPECT_TRUE(owed.couldMislead(run(2)));
    EXPECT_FALSE(owed.couldMislead(run(1))) << "a further try";
    EXPECT_FALSE(owed.couldMislead(asked("01 06 10 01 00 00", 2))) << "its reply tells the value";
    EXPECT_FALSE(owed.couldMislead(readA));
}

TEST_F(OwedRepliesTest, ATryMisleadsAcrossAnotherWrite)
{
    sendInVain(run(1));
    sendInVain(asked("01 06 10 01 00 00", 2));

    EXPECT_TRUE(owed.couldMislead(run(1)));
}

TEST_F(OwedRepliesTest, AWriteOfSeveralMisleadsWhatHasOtherValuesOnly)
{
    sendInVain(writeMany("00 07 00 08", 1));

    EXPECT_TRUE(owed.couldMislead(writeMany("00 09 00 0A", 2)));
    EXPECT_FALSE(owed.couldMislead(writeMany("00 07 00 08", 1)));
    EXPECT_FALSE(owed.couldMislead(asked("01 10 F0 02 00 02 04 00 07 00 08", 2)));
}

TEST_F(OwedRepliesTest, AReadIsUnmistakableWhenNoOtherOfItsLengthIsOwed)
{
    sendInVain(readA);

    EXPECT_FALSE(owed.isUnmistakable(readA)) << "its own would not tell which one was answered";
    EXPECT_FALSE(owed.isUnmistakable(readB));
    EXPECT_TRUE(owed.isUnmistakable(readOfThree));
    EXPECT_TRUE(owed.isUnmistakable(asked("02 03 D0 00 00 02")));
}

TEST_F(OwedRepliesTest, OnlyTheLastRequestWasLast)
{
    sendInVain(readA);
    sendInVain(readOfThree);
    sendInVain(statusOfTwo);

    EXPECT_TRUE(owed.wasLast(readOfThree));
    EXPECT_FALSE(owed.wasLast(readA));
    EXPECT_TRUE(owed.wasLast(statusOfTwo));
    EXPECT_FALSE(owed.wasLast(asked("03 03 20 00 00 01"))) << "nothing is owed there";
}

TEST_F(OwedRepliesTest, SixtyFourRequestsAreTooMuchToOweWhereEachDiffersFromTheOneBefore)
{
    for (int i = 0; i < 63; ++i)
        sendInVain(i % 2 == 0 ? readA : readB);
    sendInVain(readA);
    EXPECT_FALSE(owed.owesTooMuch(1)) << "the same once more";

    sendInVain(readB);

    EXPECT_TRUE(owed.owesTooMuch(1));
    EXPECT_FALSE(owed.owesTooMuch(2));
}

TEST_F(OwedRepliesTest, OfAReadItsReplyAndItsEchoAreExpected)
{
    sendInVain(asked("01 03 20 00 00 01"));

    EXPECT_EQ(owed.lengths(1, 3), (QVector<int> { 7, 8 }));
    EXPECT_EQ(owed.lengths(1, 0x83), QVector<int> { 5 });
}

TEST_F(OwedRepliesTest, LengthsAreAscendingAndEachIsThereOnce)
{
    sendInVain(readOfThree);
    sendInVain(readA);
    sendInVain(run(1));
    sendInVain(readB);

    EXPECT_EQ(owed.lengths(1, 3), (QVector<int> { 8, 9, 11 }));
    EXPECT_EQ(owed.lengths(1, 6), QVector<int> { 8 });
    EXPECT_EQ(owed.lengths(1, 0x83), QVector<int> { 5 });
    EXPECT_EQ(owed.lengths(1, 0x86), QVector<int> { 5 });
}

TEST_F(OwedRepliesTest, OfAWriteOfSeveralTheEchoIsLongerThanTheReply)
{
    sendInVain(writeMany("00 07 00 08", 1));

    EXPECT_EQ(owed.lengths(1, 16), (QVector<int> { 8, 13 }));
    EXPECT_EQ(owed.lengths(1, 0x90), QVector<int> { 5 });
}

TEST_F(OwedRepliesTest, OfABroadcastOnlyItsEchoIsExpected)
{
    FRAME_PRO broadcast = asked("00 06 10 01 00 00");
    broadcast.replyLength = 0;
    sendInVain(broadcast);

    EXPECT_EQ(owed.lengths(0, 6), QVector<int> { 8 });
}

TEST_F(OwedRepliesTest, NothingIsExpectedOfOtherStationsAndFunctions)
{
    sendInVain(readA);

    EXPECT_EQ(owed.lengths(2, 3), QVector<int>());
    EXPECT_EQ(owed.lengths(1, 6), QVector<int>());
    EXPECT_EQ(owed.lengths(1, 0x86), QVector<int>());
    EXPECT_EQ(owed.lengths(1, 4), QVector<int>());
}

TEST_F(OwedRepliesTest, TimeLetsGoOfWhatWouldHaveBeenAnsweredAtTheLatest)
{
    sendInVain(readA); // at 10 ms

    owed.expire(1, Duration(109999), milliseconds(100));
    EXPECT_TRUE(owed.couldMislead(readB));

    owed.expire(1, Duration(110000), milliseconds(100));
    EXPECT_FALSE(owed.couldMislead(readB));
    EXPECT_FALSE(owed.wasLast(readA));
    EXPECT_EQ(hear(replyOfTwo), "unowed");
}

TEST_F(OwedRepliesTest, TimeOfOneStationLetsGoOfNothingOfAnother)
{
    sendInVain(readA);
    sendInVain(statusOfTwo);

    owed.expire(2, milliseconds(5000), milliseconds(100));
    owed.expire(3, milliseconds(5000), milliseconds(100));

    EXPECT_TRUE(owed.couldMislead(readB));
    EXPECT_EQ(hear(replyOfStationTwo), "unowed");
}

TEST_F(OwedRepliesTest, EachOfEqualRequestsMayTakeThatLong)
{
    sendInVain(readA); // at 10 ms
    sendInVain(readA); // at 20 ms

    owed.expire(1, milliseconds(219), milliseconds(100));
    EXPECT_TRUE(owed.couldMislead(readB));

    owed.expire(1, milliseconds(220), milliseconds(100));
    EXPECT_FALSE(owed.couldMislead(readB));
}

TEST_F(OwedRepliesTest, AStationMayBeginOnOneRequestOnlyAfterTheOneBeforeIt)
{
    sendInVain(readOfThree); // at 10 ms
    sendInVain(readA); // at 20 ms

    owed.expire(1, milliseconds(209), milliseconds(100));
    EXPECT_TRUE(owed.couldMislead(readB));

    owed.expire(1, milliseconds(210), milliseconds(100));
    EXPECT_FALSE(owed.couldMislead(readB));
}

TEST_F(OwedRepliesTest, WhatWasLetGoOfIsThoughtOfAsTimeSpent)
{
    sendInVain(readOfThree); // at 10 ms
    sendInVain(readA); // at 20 ms
    owed.expire(1, milliseconds(110), milliseconds(100));
    EXPECT_TRUE(owed.isUnmistakable(readOfThree)) << "let go of";

    owed.expire(1, milliseconds(209), milliseconds(100));
    EXPECT_TRUE(owed.couldMislead(readB));

    owed.expire(1, milliseconds(210), milliseconds(100));
    EXPECT_FALSE(owed.couldMislead(readB));
}

TEST_F(OwedRepliesTest, AReplyTellsThatTheNextWasNotBegunBefore)
{
    sendInVain(readOfThree); // at 10 ms
    sendInVain(readA); // at 20 ms
    now = milliseconds(90);
    hear(replyOfThree); // at 91 ms

    owed.expire(1, milliseconds(190), milliseconds(100));
    EXPECT_TRUE(owed.couldMislead(readB));

    owed.expire(1, milliseconds(191), milliseconds(100));
    EXPECT_FALSE(owed.couldMislead(readB));
}

TEST_F(OwedRepliesTest, TimeBeginsWithTheRequestWhereTheStationWasIdle)
{
    send(readOfThree);
    hear(replyOfThree); // at 11 ms
    now = milliseconds(490);
    sendInVain(readA); // at 500 ms

    owed.expire(1, milliseconds(599), milliseconds(100));
    EXPECT_TRUE(owed.couldMislead(readB));

    owed.expire(1, milliseconds(600), milliseconds(100));
    EXPECT_FALSE(owed.couldMislead(readB));
}
