// SPDX-License-Identifier: MIT
// Recipe transfers that the host requests by the two bytes of its block.
#include "cycle_fixture.h"

using Calls = std::vector<std::string>;
using Served = std::vector<std::string>;

namespace {

class RecipeTransfers : public CycleFixture {
protected:
    RecipeTransfers() { init("1#0#0#1#10"); }

    void requestWrite(unsigned char value = 1) { hostBlock[60115] = value; }
    void requestRead(unsigned char value = 1) { hostBlock[60116] = value; }

    /// Brings a recipe read of "F" 16, count 3, onto the line.
    void beginRead()
    {
        state.rcpSendVars = { recipeVar(1, 1, "F", 16, 3, 0) };
        requestRead();
        nextFrame();
    }

    /// Answers it with the values 0x1234, 0x5678, 0x9ABC.
    int answerRead() { return reply("01 03 06 12 34 56 78 9A BC 69 43"); }
};

} // namespace

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

TEST_F(RecipeTransfers, StoreReadValuesAsDoublesInTheRecipeBuffer)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 2, 4), recipeVar(1, 1, "F", 17, 2, 8) };
    state.mergeIndexList = { 0 };
    beginRead();

    EXPECT_EQ(answerRead(), 1);
    EXPECT_EQ(recipeBuffer[4], 0x5678);
    EXPECT_EQ(recipeBuffer[5], 0x1234);
    EXPECT_EQ(recipeBuffer[8], 0x9ABC);
    EXPECT_EQ(recipeBuffer[9], 0x5678);
    EXPECT_EQ(recipeBuffer[3], 0);
    EXPECT_EQ(recipeBuffer[6], 0);
}

TEST_F(RecipeTransfers, ReportTheTwoUnitsOfEachReadValueWithLink0AndStationMinus1)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 2, 4), recipeVar(1, 1, "F", 17, 2, 8) };
    state.mergeIndexList = { 0 };
    beginRead();

    answerRead();

    EXPECT_EQ(calls, (Calls { "0 -1 RWI 4", "0 -1 RWI 5", "0 -1 RWI 8", "0 -1 RWI 9" }));
}

TEST_F(RecipeTransfers, StoreBothUnitsBeforeReportingThem)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 2, 4), recipeVar(1, 1, "F", 17, 2, 8) };
    state.mergeIndexList = { 0 };
    beginRead();
    std::vector<std::vector<int>> seen;
    insideCallback = [&](int, int, const QString &, int) {
        seen.push_back({ recipeBuffer[4], recipeBuffer[5], recipeBuffer[8], recipeBuffer[9] });
    };

    answerRead();

    EXPECT_EQ(seen,
              (std::vector<std::vector<int>> { { 0x5678, 0x1234, 0, 0 },
                                               { 0x5678, 0x1234, 0, 0 },
                                               { 0x5678, 0x1234, 0x9ABC, 0x5678 },
                                               { 0x5678, 0x1234, 0x9ABC, 0x5678 } }));
}

TEST_F(RecipeTransfers, ReportChangedRegistersBeforeRecipeUnits)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 2, 4) };
    state.mergeIndexList = { 0 };
    record(1, "F", 18).flags = 1;
    beginRead();

    answerRead();

    EXPECT_EQ(calls, (Calls { "1 1 F 18", "0 -1 RWI 4", "0 -1 RWI 5" }));
    EXPECT_EQ(data(1, "F", 16, 3), "34 12 78 56 BC 9A");
}

TEST_F(RecipeTransfers, StoreFourBytesForACountOfOneToo)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4) };
    state.mergeIndexList = { 0 };
    beginRead();

    answerRead();

    EXPECT_EQ(recipeBuffer[4], 0x5678);
    EXPECT_EQ(recipeBuffer[5], 0x1234);
}

TEST_F(RecipeTransfers, TakeTheCrcForTheSecondRegisterOfTheLastVariable)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4), recipeVar(1, 1, "F", 18, 1, 8) };
    state.mergeIndexList = { 0 };
    beginRead();

    EXPECT_EQ(reply("01 03 06 12 34 56 78 9A BC 69 43"), 1);
    EXPECT_EQ(recipeBuffer[8], 0x6943);
    EXPECT_EQ(recipeBuffer[9], 0x9ABC);
}

TEST_F(RecipeTransfers, TakeZeroBeyondTheReply)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4), recipeVar(1, 1, "F", 20, 1, 8) };
    state.mergeIndexList = { 0 };
    recipeBuffer[8] = 0xFFFF;
    recipeBuffer[9] = 0xFFFF;
    beginRead();

    answerRead();

    EXPECT_EQ(recipeBuffer[8], 0);
    EXPECT_EQ(recipeBuffer[9], 0);
    EXPECT_EQ(calls, (Calls { "0 -1 RWI 4", "0 -1 RWI 5", "0 -1 RWI 8", "0 -1 RWI 9" }));
}

TEST_F(RecipeTransfers, ServeTheVariablesUpToTheNextMergeIndex)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4), recipeVar(1, 1, "F", 17, 1, 8),
                      recipeVar(1, 1, "F", 18, 1, 12) };
    state.mergeIndexList = { 0, 2 };
    beginRead();

    answerRead();

    EXPECT_EQ(calls, (Calls { "0 -1 RWI 4", "0 -1 RWI 5", "0 -1 RWI 8", "0 -1 RWI 9" }));
}

TEST_F(RecipeTransfers, ServeTheVariablesOfTheLastMergeIndexToTheEnd)
{
    state.rcpVars = { recipeVar(1, 1, "F", 3, 1, 4), recipeVar(1, 1, "F", 16, 1, 8),
                      recipeVar(1, 1, "F", 17, 1, 12) };
    state.mergeIndexList = { 0, 1 };
    state.rcpSendVars = { recipeVar(1, 1, "F", 3, 1, 0), recipeVar(1, 1, "F", 16, 3, 0) };
    state.rcpIndex = 1;
    requestRead();
    ASSERT_EQ(nextFrame(), "01 03 F0 10 00 03 37 0E");

    answerRead();

    EXPECT_EQ(calls, (Calls { "0 -1 RWI 8", "0 -1 RWI 9", "0 -1 RWI 12", "0 -1 RWI 13" }));
    EXPECT_EQ(recipeBuffer[9], 0x1234);
    EXPECT_EQ(recipeBuffer[13], 0x5678);
}

TEST_F(RecipeTransfers, WithoutMergeIndexesStoreNoRecipeValues)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4) };
    beginRead();

    EXPECT_EQ(answerRead(), 1);
    EXPECT_EQ(recipeBuffer[4], 0);
    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(data(1, "F", 16, 3), "34 12 78 56 BC 9A");
    EXPECT_EQ(hostBlock[60116], 0);
}

TEST_F(RecipeTransfers, SkipMergeIndexesPastTheVariables)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4) };
    state.mergeIndexList = { 0, 3 };
    beginRead();

    EXPECT_EQ(answerRead(), 1);
    EXPECT_EQ(calls, (Calls { "0 -1 RWI 4", "0 -1 RWI 5" }));
}

TEST_F(RecipeTransfers, SkipAFirstVariablePastTheVariables)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4) };
    state.mergeIndexList = { 5, 7 };
    beginRead();

    EXPECT_EQ(answerRead(), 1);
    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(data(1, "F", 16, 1), "34 12");
}

TEST_F(RecipeTransfers, OfAnUnknownTypeStoreNoRecipeValues)
{
    state.rcpVars = { recipeVar(1, 1, "X", 16, 1, 4) };
    state.mergeIndexList = { 0 };
    state.rcpSendVars = { recipeVar(1, 1, "X", 16, 3, 0) };
    requestRead();
    nextFrame();

    EXPECT_EQ(answerRead(), 1);
    EXPECT_EQ(recipeBuffer[4], 0);
    EXPECT_EQ(calls, Calls {});
}

TEST_F(RecipeTransfers, WithoutARecipeBufferAreStillAccepted)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4) };
    state.mergeIndexList = { 0 };
    beginRead();
    state.recipeBuffer = nullptr;

    EXPECT_EQ(answerRead(), 1);
    EXPECT_EQ(recipeBuffer[4], 0);
    EXPECT_EQ(data(1, "F", 16, 1), "34 12");
}

TEST_F(RecipeTransfers, OutsideARecipeReadNoRecipeValueIsStored)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4) };
    state.mergeIndexList = { 0 };
    merge({ keyAddress(1, "F", 16, 3) });
    nextFrame();

    answerRead();

    EXPECT_EQ(recipeBuffer[4], 0);
    EXPECT_EQ(calls, (Calls { "1 1 F 16", "1 1 F 17", "1 1 F 18" }));
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
