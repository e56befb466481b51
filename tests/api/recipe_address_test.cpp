// SPDX-License-Identifier: MIT
// The recipe variables of a link, and the requests made of them.
#include "driver_fixture.h"

#include <algorithm>

namespace {

class RecipeAddresses : public DriverFixture { };

TEST_F(RecipeAddresses, OfThisLinkAreKeptInTheHostsOrder)
{
    init("1#0#0#3#16");
    const QVector<_RCP_VAR_PRO> list { recipeVar(1, 2, "F", 3, 4, 5), recipeVar(2, 3, "F", 4, 5, 6),
                                       recipeVar(1, 4, "D", 5, 6, 7) };

    EXPECT_EQ(dx4.setRcpAddress(list), 2);

    ASSERT_EQ(state.rcpVars.size(), 2);
    EXPECT_EQ(state.rcpVars.at(0).station, 2);
    EXPECT_EQ(state.rcpVars.at(1).station, 4);
}

TEST_F(RecipeAddresses, AreCopiedWithEveryField)
{
    init("1#0#0#3#16");
    _RCP_VAR_PRO recipe = recipeVar(1, 2, "FRE", 3, 4, 5);
    recipe.spare = 6;

    EXPECT_EQ(dx4.setRcpAddress({ recipe }), 1);

    ASSERT_EQ(state.rcpVars.size(), 1);
    EXPECT_EQ(state.rcpVars.at(0).linkId, 1);
    EXPECT_EQ(state.rcpVars.at(0).station, 2);
    EXPECT_EQ(state.rcpVars.at(0).regType.toStdString(), "FRE");
    EXPECT_EQ(state.rcpVars.at(0).address, 3);
    EXPECT_EQ(state.rcpVars.at(0).count, 4);
    EXPECT_EQ(state.rcpVars.at(0).bufferOffset, 5);
    EXPECT_EQ(state.rcpVars.at(0).spare, 6);
}

TEST_F(RecipeAddresses, SecondListReplacesTheFirst)
{
    init("1#0#0#3#16");
    dx4.setRcpAddress({ recipeVar(1, 2, "F", 3, 4, 5), recipeVar(1, 4, "F", 5, 6, 7) });

    EXPECT_EQ(dx4.setRcpAddress({ recipeVar(1, 9, "F", 3, 4, 5) }), 1);

    ASSERT_EQ(state.rcpVars.size(), 1);
    EXPECT_EQ(state.rcpVars.at(0).station, 9);
}

TEST_F(RecipeAddresses, EmptyListLeavesNone)
{
    init("1#0#0#3#16");
    dx4.setRcpAddress({ recipeVar(1, 2, "F", 3, 4, 5) });

    EXPECT_EQ(dx4.setRcpAddress({}), 0);

    EXPECT_TRUE(state.rcpVars.isEmpty());
}

TEST_F(RecipeAddresses, ListOfOtherLinksLeavesNone)
{
    init("1#0#0#3#16");
    dx4.setRcpAddress({ recipeVar(1, 2, "F", 3, 4, 5) });

    EXPECT_EQ(dx4.setRcpAddress({ recipeVar(2, 2, "F", 3, 4, 5) }), 0);

    EXPECT_TRUE(state.rcpVars.isEmpty());
}

TEST_F(RecipeAddresses, AreChosenByTheLinkNumberAtTheTimeOfTheCall)
{
    init("1#0#0#3#16");
    dx4.setRcpAddress({ recipeVar(1, 2, "F", 3, 4, 5) });

    init("7#0#0#3#16");

    ASSERT_EQ(state.rcpVars.size(), 1);
    EXPECT_EQ(state.rcpVars.at(0).linkId, 1);
    EXPECT_EQ(dx4.setRcpAddress({ recipeVar(1, 2, "F", 3, 4, 5) }), 0);
}

TEST_F(RecipeAddresses, AreNoTransfersToSend)
{
    init("1#0#0#3#16");
    hostBlock[60115] = 1;

    dx4.setRcpAddress({ recipeVar(1, 2, "F", 3, 1, 0) });

    EXPECT_TRUE(state.rcpSendVars.isEmpty());
    EXPECT_EQ(nextFrame(), "");
}

TEST_F(RecipeAddresses, AreNotCheckedForTypeOrCount)
{
    init("1#0#0#3#16");

    EXPECT_EQ(dx4.setRcpAddress({ recipeVar(1, 2, "XY", -3, -4, -5) }), 1);

    EXPECT_EQ(state.rcpVars.at(0).count, -4);
}

class RecipeRequest : public DriverFixture {
protected:
    RecipeRequest()
    {
        init("1#0#0#3#16");
        recipeBuffer[3] = 0x1234;
        recipeBuffer[4] = 0xABCD;
        recipeBuffer[5] = 0xFFFF;
    }

    /// Data bytes of the frame from `from` on that are zero in a row, at most to the end.
    long zerosFrom(int from) const
    {
        const unsigned char *begin = frame.var.data + from;
        const unsigned char *end = frame.var.data + sizeof frame.var.data;
        return std::find_if(begin, end, [](unsigned char byte) { return byte != 0; }) - begin;
    }
};

TEST_F(RecipeRequest, WriteTakesItsValuesFromTheRecipeBuffer)
{
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0x102, 2, 3));
    hostBlock[60115] = 1;

    EXPECT_EQ(nextFrame(), "01 10 F1 02 00 02 04 12 34 AB CD 81 F1");

    EXPECT_EQ(toHex(frame.var.data, 4), "34 12 CD AB");
    EXPECT_EQ(zerosFrom(4), 1020);
    EXPECT_EQ(state.phase, 5);
}

TEST_F(RecipeRequest, ReadCarriesNoValues)
{
    state.rcpSendVars.append(recipeVar(1, 1, "D", 0, 1, 3));
    hostBlock[60116] = 1;

    EXPECT_EQ(nextFrame(), "01 03 D0 00 00 01 BC CA");

    EXPECT_EQ(zerosFrom(0), 1024);
    EXPECT_EQ(state.phase, 6);
}

TEST_F(RecipeRequest, KeepsTheKindOfTheVariableServedBefore)
{
    state.curVar.varKind = 42;
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, 1, 3));
    hostBlock[60115] = 1;

    nextFrame();

    EXPECT_EQ(frame.var.varKind, 42);
}

TEST_F(RecipeRequest, ClearsTheValuesServedBefore)
{
    std::fill_n(state.curVar.data, 1024, static_cast<unsigned char>(0xEE));
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, 1, 3));
    hostBlock[60115] = 1;

    nextFrame();

    EXPECT_EQ(toHex(frame.var.data, 2), "34 12");
    EXPECT_EQ(zerosFrom(2), 1022);
}

TEST_F(RecipeRequest, NegativeCountCopiesNothing)
{
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, -1, 3));
    hostBlock[60115] = 1;

    nextFrame();

    EXPECT_EQ(frame.var.count, -1);
    EXPECT_EQ(zerosFrom(0), 1024);
}

TEST_F(RecipeRequest, NullBufferCopiesNothing)
{
    state.recipeBuffer = nullptr;
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, 1, 3));
    hostBlock[60115] = 1;

    EXPECT_EQ(nextFrame(), "01 06 F0 00 00 00 BA CA");

    EXPECT_EQ(zerosFrom(0), 1024);
}

TEST_F(RecipeRequest, CopyStopsAtTheEndOfTheData)
{
    std::fill(recipeBuffer.begin(), recipeBuffer.end(), static_cast<unsigned short>(0xBBAA));
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, 600, 3));
    hostBlock[60115] = 1;

    EXPECT_EQ(nextFrame(), "");

    EXPECT_EQ(state.curVar.count, 600);
    EXPECT_EQ(toHex(state.curVar.data + 1022, 2), "AA BB");
    EXPECT_EQ(state.phase, 5);
}

} // namespace
