// SPDX-License-Identifier: MIT
// Recipe transfers that the host requests by the two bytes of its block.
#include "recipe_fixture.h"

using Calls = std::vector<std::string>;
using Served = std::vector<std::string>;

TEST_F(RecipeTransfers, WriteTheValuesOfTheRecipeBuffer)
{
    state.rcpSendVars = { recipeVar(1, 3, "F", 0x0105, 2, 3) };
    recipeBuffer[3] = 0x1234;
    recipeBuffer[4] = 0x5678;
    requestWrite();

    EXPECT_EQ(nextFrame(), "03 10 F1 05 00 02 04 12 34 56 78 4A 88");
    EXPECT_EQ(state.phase, 5);
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(toHex(state.curVar.data, 6), "34 12 78 56 00 00");
}

TEST_F(RecipeTransfers, ReadWithoutTakingValuesAlong)
{
    state.rcpSendVars = { recipeVar(1, 3, "F", 0x0105, 2, 3) };
    recipeBuffer[3] = 0x1234;
    requestRead();

    EXPECT_EQ(nextFrame(), "03 03 F1 05 00 02 E7 14");
    EXPECT_EQ(state.phase, 6);
    EXPECT_EQ(toHex(state.curVar.data, 4), "00 00 00 00");
}

TEST_F(RecipeTransfers, LeaveTheKindOfTheCurrentVariable)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0) };
    state.curVar.varKind = 9;
    requestWrite();

    nextFrame();

    EXPECT_EQ(state.curVar.varKind, 9);
    EXPECT_EQ(frame.var.varKind, 9);
}

TEST_F(RecipeTransfers, ComeBeforeWritesConditionReadsAndCyclicReads)
{
    merge({ keyAddress(1, "D", 0, 1) });
    readOnce(1, "SW", 0, 1);
    set(1, "F", 0, { 1 });
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0) };
    requestWrite();

    EXPECT_EQ(serveTimes(4), (Served { "5 1 F 5 1", "2 1 F 0 1", "3 1 SW 0 1", "4 1 D 0 1" }));
}

TEST_F(RecipeTransfers, WriteBeforeTheyRead)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0), recipeVar(1, 1, "F", 6, 1, 1) };
    requestWrite();
    requestRead();

    EXPECT_EQ(serveTimes(4), (Served { "5 1 F 5 1", "5 1 F 6 1", "6 1 F 5 1", "6 1 F 6 1" }));
    EXPECT_EQ(hostBlock[60115], 0);
    EXPECT_EQ(hostBlock[60116], 0);
}

TEST_F(RecipeTransfers, OfAControlWordWithTwoRegistersGiveNothingInPhase5)
{
    state.rcpSendVars = { recipeVar(1, 1, "CW", 0, 2, 0) };
    requestWrite();

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.phase, 5);
    EXPECT_EQ(state.rcpIndex, 0);
}

TEST_F(RecipeTransfers, OfANegativeCountCopyNothing)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, -2, 0) };
    recipeBuffer[0] = 0xFFFF;
    requestWrite();

    nextFrame();

    EXPECT_EQ(state.curVar.count, -2);
    EXPECT_EQ(toHex(state.curVar.data, 4), "00 00 00 00");
}

TEST_F(RecipeTransfers, WithoutARecipeBufferWriteZeros)
{
    int result = -1;
    dx4.initProperty(hostBlock.data(), 0, nullptr, &result, "1#0#0#1#10", &mutex);
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0) };
    requestWrite();

    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 00 AA CB");
}

TEST_F(RecipeTransfers, CopyNoMoreThanTheDataOfAVariable)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 600, 0) };
    recipeBuffer[511] = 0xABCD;
    recipeBuffer[512] = 0xFFFF;
    requestWrite();

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.curVar.count, 600);
    EXPECT_EQ(toHex(state.curVar.data + 1022, 2), "CD AB");
}

TEST_F(RecipeTransfers, OfTwoWritesAdvanceThenClearTheRequest)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0), recipeVar(1, 1, "F", 6, 1, 1) };
    requestWrite();

    serve();
    EXPECT_EQ(state.rcpIndex, 1);
    EXPECT_EQ(hostBlock[60115], 1);

    serve();
    EXPECT_EQ(state.rcpIndex, 0);
    EXPECT_EQ(hostBlock[60115], 0);
}

TEST_F(RecipeTransfers, OfTwoReadsAdvanceThenClearTheRequest)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0), recipeVar(1, 1, "F", 6, 1, 1) };
    requestRead();

    serve();
    EXPECT_EQ(state.rcpIndex, 1);
    EXPECT_EQ(hostBlock[60116], 1);

    serve();
    EXPECT_EQ(state.rcpIndex, 0);
    EXPECT_EQ(hostBlock[60116], 0);
}

TEST_F(RecipeTransfers, AFailedWriteEndsTheWholeRequest)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0), recipeVar(1, 1, "F", 6, 1, 1),
                          recipeVar(1, 1, "F", 7, 1, 2) };
    requestWrite();
    requestRead();
    nextFrame();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(state.rcpIndex, 0);
    EXPECT_EQ(hostBlock[60115], 0);
    EXPECT_EQ(hostBlock[60116], 1);
    EXPECT_EQ(calls, Calls {});
}

TEST_F(RecipeTransfers, AFailedReadEndsTheWholeRequest)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0), recipeVar(1, 1, "F", 6, 1, 1) };
    requestRead();
    serve();
    nextFrame();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(state.rcpIndex, 0);
    EXPECT_EQ(hostBlock[60116], 0);
    EXPECT_EQ(record(1, "F", 6).flag0, 1);
}

TEST_F(RecipeTransfers, SettleNoWrite)
{
    set(1, "F", 5, { 0x0011 });
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0) };
    requestWrite();

    EXPECT_EQ(serve(), "5 1 F 5 1");
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
    EXPECT_EQ(text(state.writeList), "1 F 5 1");
}

TEST_F(RecipeTransfers, LeaveTheMutexUnlocked)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0) };
    requestWrite();

    serve();

    ASSERT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST_F(RecipeTransfers, WithoutAMutexClearNoRequest)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0) };
    requestWrite();
    nextFrame();
    state.hostMutex = nullptr;

    EXPECT_EQ(echo(), 1);
    EXPECT_EQ(hostBlock[60115], 1);
    EXPECT_EQ(state.rcpIndex, 0);
}

TEST_F(RecipeTransfers, WithoutAHostBlockClearNoRequest)
{
    state.rcpSendVars = { recipeVar(1, 1, "F", 5, 1, 0) };
    requestWrite();
    nextFrame();
    state.hostBlock = nullptr;

    EXPECT_EQ(echo(), 1);
    EXPECT_EQ(hostBlock[60115], 1);
    EXPECT_EQ(state.rcpIndex, 0);
}

TEST_F(RecipeTransfers, ARepeatedWriteWithoutTransfersEndsTheRequest)
{
    merge({ keyAddress(1, "D", 0, 1) });
    serve();
    state.phase = 5;
    state.curVar = variable(1, "F", 5, 1);
    requestWrite();

    EXPECT_EQ(serve(), "5 1 F 5 1");
    EXPECT_EQ(hostBlock[60115], 0);
    EXPECT_EQ(state.rcpIndex, 0);
}

TEST_F(RecipeTransfers, ARaisedByteLetsARepeatedWriteCloseTheOneThatWasNeverSent)
{
    set(1, "F", 5, { 0x0011 });
    set(1, "F", 9, { 0x0022 });
    ASSERT_EQ(nextFrame(), "01 06 F0 05 00 11 6A C7");
    requestWrite();
    echo();
    ASSERT_EQ(text(state.writeList), "1 F 9 1");

    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 11 6A C7");
    EXPECT_EQ(echo(), 1);

    EXPECT_EQ(text(state.writeList), "");
    EXPECT_EQ(record(1, "F", 9).writePending, 0);
    EXPECT_EQ(toHex(record(1, "F", 9).value, 2), "22 00");
}

TEST_F(RecipeTransfers, ARepeatedWriteWithAnEmptyListSettlesOnlyItself)
{
    set(1, "F", 5, { 0x0011 });
    nextFrame();
    requestWrite();
    echo();
    ASSERT_EQ(text(state.writeList), "");

    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 11 6A C7");
    EXPECT_EQ(echo(), 1);
    EXPECT_EQ(cacheKeys(), "1 F 5");
    EXPECT_EQ(data(1, "F", 5, 1), "11 00");
}

TEST_F(RecipeTransfers, ARaisedByteLetsARepeatedConditionReadCloseTheOneThatWasNeverSent)
{
    readOnce(1, "D", 5, 1);
    readOnce(1, "D", 9, 1);
    ASSERT_EQ(serve(), "3 1 D 5 1");
    requestRead();
    calls.clear();

    EXPECT_EQ(serve(), "3 1 D 5 1");

    EXPECT_EQ(text(state.conditionList), "");
    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
    EXPECT_FALSE(isCached(1, "D", 9));
}

TEST_F(RecipeTransfers, ARepeatedConditionReadWithAnEmptyListReportsNothing)
{
    readOnce(1, "D", 5, 1);
    serve();
    requestRead();
    calls.clear();

    EXPECT_EQ(serve(), "3 1 D 5 1");
    EXPECT_EQ(calls, Calls {});
}
