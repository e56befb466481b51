// SPDX-License-Identifier: MIT
// Which request goes on the line next.
#include "send_queue_fixture.h"

using Served = std::vector<std::string>;

TEST_F(SendQueue, WithNothingToSendGoesIdle)
{
    state.phase = 4;
    state.tryCount = 4;

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.phase, 0);
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(SendQueue, WithNothingToSendLeavesTheHostsFrameAlone)
{
    frame.sendLength = 77;

    EXPECT_EQ(dx4.getSendFrame(frame), 0);
    EXPECT_EQ(frame.sendLength, 77);
}

TEST_F(SendQueue, HandsOutACyclicRead)
{
    merge({ keyAddress(1, "D", 0, 3) });

    EXPECT_EQ(nextFrame(), "01 03 D0 00 00 03 3D 0B");
    EXPECT_EQ(state.phase, 4);
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(frame.replyLength, 11);
    EXPECT_EQ(frame.replyDataOffset, 3);
    EXPECT_EQ(frame.replyDataLength, 6);
    EXPECT_EQ(frame.var.varKind, 4);
    EXPECT_EQ(text(frame.var), "1 D 0 3");
}

TEST_F(SendQueue, HandsOutAConditionRead)
{
    readOnce(3, "FU", 0, 1, 0, 9);

    EXPECT_EQ(nextFrame(), "03 03 20 01 00 01 DF E8");
    EXPECT_EQ(state.phase, 3);
    EXPECT_EQ(state.tryCount, 1);
    EXPECT_EQ(frame.var.varKind, 9);
}

TEST_F(SendQueue, HandsOutAWrite)
{
    set(2, "F", 0x0102, { 0x1234 }, 8);

    EXPECT_EQ(nextFrame(), "02 06 F1 02 12 34 17 B2");
    EXPECT_EQ(state.phase, 2);
    EXPECT_EQ(state.tryCount, 1);
    EXPECT_EQ(frame.replyLength, 8);
    EXPECT_EQ(frame.replyDataLength, 0);
    EXPECT_EQ(frame.var.varKind, 8);
}

TEST_F(SendQueue, CopiesTheWholeHeadIntoTheCurrentVariable)
{
    set(2, "F", 0x0102, { 0x1234, 0x5678 }, 8);

    nextFrame();

    EXPECT_EQ(text(state.curVar), "2 F 258 2");
    EXPECT_EQ(state.curVar.varKind, 8);
    EXPECT_EQ(toHex(state.curVar.data, 6), "34 12 78 56 00 00");
}

TEST_F(SendQueue, LeavesTheServedEntryAtTheHeadOfItsList)
{
    pollTwo();
    set(1, "F", 0, { 1 });
    readOnce(1, "SW", 0, 1);

    nextFrame();

    EXPECT_EQ(text(state.writeList), "1 F 0 1");
    EXPECT_EQ(text(state.conditionList), "1 SW 0 1");
    EXPECT_EQ(text(state.readList), "1 D 0 1; 1 D 5 1");
}

TEST_F(SendQueue, HandsTheFrameInProgressOutAgain)
{
    readOnce(1, "D", 7, 1);
    const std::string first = nextFrame();

    const std::string second = nextFrame();

    EXPECT_EQ(first, "01 03 D0 07 00 01 0D 0B");
    EXPECT_EQ(second, "01 03 D0 07 00 01 0D 0B");
    EXPECT_EQ(state.tryCount, 1);
    EXPECT_EQ(state.sendFrames.size(), 1);
}

TEST_F(SendQueue, CopiesEveryFieldOfTheFrameInProgress)
{
    readOnce(1, "D", 7, 1);
    nextFrame();
    FRAME_PRO &head = state.sendFrames[0];
    head.frame[1023] = 0xA5;
    head.replyLength = 21;
    head.replyDataOffset = 22;
    head.replyDataLength = 23;
    head.spare = 24;
    head.var.data[1023] = 0x5A;
    head.var.varKind = 25;

    nextFrame();

    EXPECT_EQ(frame.frame[1023], 0xA5);
    EXPECT_EQ(frame.replyLength, 21);
    EXPECT_EQ(frame.replyDataOffset, 22);
    EXPECT_EQ(frame.replyDataLength, 23);
    EXPECT_EQ(frame.spare, 24);
    EXPECT_EQ(frame.var.data[1023], 0x5A);
    EXPECT_EQ(frame.var.varKind, 25);
}

TEST_F(SendQueue, AFrameInProgressComesBeforeARecipeRequest)
{
    readOnce(1, "D", 7, 1);
    nextFrame();
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, 1, 0));
    requestRecipeWrite();

    EXPECT_EQ(nextFrame(), "01 03 D0 07 00 01 0D 0B");
    EXPECT_EQ(state.phase, 3);
}

TEST_F(SendQueue, ServesWriteThenConditionReadThenCyclicReadsInTurn)
{
    pollTwo();
    readOnce(1, "SW", 0, 1);
    set(1, "F", 0, { 1 });

    EXPECT_EQ(serveTimes(5),
              (Served { "2 1 F 0 1", "3 1 SW 0 1", "4 1 D 0 1", "4 1 D 5 1", "4 1 D 0 1" }));
}

TEST_F(SendQueue, PutsACyclicReadAfterFiveWrites)
{
    merge({ keyAddress(1, "D", 0, 1) });
    for (int address = 0; address < 7; ++address)
        set(1, "F", address, { 1 });

    EXPECT_EQ(serveTimes(9),
              (Served { "2 1 F 0 1", "2 1 F 1 1", "2 1 F 2 1", "2 1 F 3 1", "2 1 F 4 1",
                        "4 1 D 0 1", "2 1 F 5 1", "2 1 F 6 1", "4 1 D 0 1" }));
}

TEST_F(SendQueue, PutsACyclicReadAfterThreeConditionReads)
{
    merge({ keyAddress(1, "D", 0, 1) });
    for (int address = 10; address < 14; ++address)
        readOnce(1, "F", address, 1);

    EXPECT_EQ(serveTimes(6),
              (Served { "3 1 F 10 1", "3 1 F 11 1", "3 1 F 12 1", "4 1 D 0 1", "3 1 F 13 1",
                        "4 1 D 0 1" }));
}

TEST_F(SendQueue, WritesUseUpTheTurnsOfConditionReads)
{
    merge({ keyAddress(1, "D", 0, 1) });
    set(1, "F", 0, { 1 });
    set(1, "F", 1, { 1 });
    set(1, "F", 2, { 1 });
    readOnce(1, "SW", 0, 1);

    EXPECT_EQ(serveTimes(5),
              (Served { "2 1 F 0 1", "2 1 F 1 1", "2 1 F 2 1", "4 1 D 0 1", "3 1 SW 0 1" }));
}

TEST_F(SendQueue, AConditionReadFollowsTwoWrites)
{
    merge({ keyAddress(1, "D", 0, 1) });
    set(1, "F", 0, { 1 });
    set(1, "F", 1, { 1 });
    readOnce(1, "SW", 0, 1);

    EXPECT_EQ(serveTimes(4), (Served { "2 1 F 0 1", "2 1 F 1 1", "3 1 SW 0 1", "4 1 D 0 1" }));
}

TEST_F(SendQueue, WritesGoOnAfterThreeConditionReads)
{
    merge({ keyAddress(1, "D", 0, 1) });
    for (int address = 10; address < 14; ++address)
        readOnce(1, "F", address, 1);
    serveTimes(3);
    for (int address = 0; address < 3; ++address)
        set(1, "F", address, { 1 });

    EXPECT_EQ(serveTimes(5),
              (Served { "2 1 F 0 1", "2 1 F 1 1", "4 1 D 0 1", "2 1 F 2 1", "3 1 F 13 1" }));
}

TEST_F(SendQueue, WithoutCyclicReadsReturnsZeroOnceAfterFiveWritesAlthoughOneWaits)
{
    for (int address = 0; address < 6; ++address)
        set(1, "F", address, { 1 });
    serveTimes(5);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.phase, 0);
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(text(state.writeList), "1 F 5 1");
    EXPECT_EQ(serve(), "2 1 F 5 1");
}

TEST_F(SendQueue, WithoutCyclicReadsReturnsZeroOnceAfterThreeConditionReadsAlthoughOneWaits)
{
    for (int address = 10; address < 14; ++address)
        readOnce(1, "F", address, 1);
    serveTimes(3);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(serve(), "3 1 F 13 1");
}

TEST_F(SendQueue, AControlWordWriteOfTwoRegistersReturnsZeroInPhase2AndStays)
{
    set(1, "CW", 0, { 1, 2 });

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.phase, 2);
    EXPECT_EQ(text(state.writeList), "1 CW 0 2");
    EXPECT_EQ(text(state.curVar), "1 CW 0 2");
}

TEST_F(SendQueue, EachCallThatMeetsAFrequencyWriteOfTwoRegistersCounts)
{
    merge({ keyAddress(1, "D", 0, 1) });
    set(1, "FRE", 0, { 1, 2 });

    for (int call = 1; call <= 5; ++call) {
        ASSERT_EQ(nextFrame(), "");
        ASSERT_EQ(state.tryCount, call);
        ASSERT_EQ(state.phase, 2);
    }

    EXPECT_EQ(serve(), "4 1 D 0 1");
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.tryCount, 1);
}

TEST_F(SendQueue, AReplyToNothingAfterAnUnsendableWriteIsNoRequest)
{
    set(1, "CW", 0, { 1, 2 });
    nextFrame();

    EXPECT_EQ(echo(), 0);
    EXPECT_EQ(text(state.writeList), "1 CW 0 2");
}

TEST_F(SendQueue, ReadsABlockOfCountZero)
{
    merge({ keyAddress(1, "D", 5, 0) });

    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 00 6D 0B");
    EXPECT_EQ(frame.replyLength, 5);
    EXPECT_EQ(frame.replyDataLength, 0);
}

TEST_F(SendQueue, ReadsABlockOfCountMinusOne)
{
    merge({ keyAddress(1, "D", 5, 1), keyAddress(2, "D", 3, 1) });

    EXPECT_EQ(nextFrame(), "01 03 D0 05 FF FF 6C BB");
    EXPECT_EQ(frame.replyLength, 3);
    EXPECT_EQ(frame.replyDataLength, -2);
}
