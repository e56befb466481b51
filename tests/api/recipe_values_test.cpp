// SPDX-License-Identifier: MIT
// Values that a recipe read stores in the host's recipe buffer.
#include "recipe_fixture.h"

using Calls = std::vector<std::string>;

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
