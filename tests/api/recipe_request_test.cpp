// SPDX-License-Identifier: MIT
// What the two request bytes of the host's block do to the queue.
#include "send_queue_fixture.h"

#include <algorithm>

using Served = std::vector<std::string>;

TEST_F(SendQueue, ARecipeWriteByteRepeatsTheCyclicReadUntilItIsCleared)
{
    pollTwo();
    serve();
    requestRecipeWrite();
    set(1, "F", 0, { 1 });
    readOnce(1, "SW", 0, 1);

    EXPECT_EQ(serveTimes(3), (Served { "4 1 D 0 1", "4 1 D 0 1", "4 1 D 0 1" }));

    requestRecipeWrite(0);
    EXPECT_EQ(serveTimes(2), (Served { "2 1 F 0 1", "3 1 SW 0 1" }));
}

TEST_F(SendQueue, ARecipeReadByteRepeatsTheCyclicReadUntilItIsCleared)
{
    pollTwo();
    serve();
    requestRecipeRead();

    EXPECT_EQ(serveTimes(2), (Served { "4 1 D 0 1", "4 1 D 0 1" }));

    requestRecipeRead(0);
    EXPECT_EQ(serveTimes(2), (Served { "4 1 D 5 1", "4 1 D 0 1" }));
}

TEST_F(SendQueue, CyclicReadsGoOnRotatingWhileARecipeByteIsRaised)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1), keyAddress(1, "D", 9, 1) });
    serve();
    requestRecipeWrite();

    serve();

    EXPECT_EQ(text(state.readList), "1 D 9 1; 1 D 0 1; 1 D 5 1");
}

TEST_F(SendQueue, ARecipeByteAtPhase0GivesNothing)
{
    pollTwo();
    set(1, "F", 0, { 1 });
    state.tryCount = 2;
    requestRecipeWrite();

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(state.phase, 0);
    EXPECT_EQ(state.tryCount, 2);
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(SendQueue, ARecipeByteWithTheIndexAtTheEndRepeatsTheCurrentVariable)
{
    pollTwo();
    serve();
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, 1, 0));
    state.rcpIndex = 1;
    requestRecipeWrite();

    EXPECT_EQ(serve(), "4 1 D 0 1");
}

TEST_F(SendQueue, AnyOtherValueOfTheRecipeBytesIsNoRequest)
{
    pollTwo();
    requestRecipeWrite(2);
    requestRecipeRead(255);
    state.rcpSendVars.append(recipeVar(1, 1, "F", 0, 1, 0));

    EXPECT_EQ(serveTimes(2), (Served { "4 1 D 0 1", "4 1 D 5 1" }));
}

TEST_F(SendQueue, ChangesNoByteOfTheHostsBlock)
{
    pollTwo();
    requestRecipeWrite();
    requestRecipeRead();

    nextFrame();

    EXPECT_EQ(hostBlock[60115], 1);
    EXPECT_EQ(hostBlock[60116], 1);
    EXPECT_EQ(std::count(hostBlock.begin(), hostBlock.end(), 0), 60115);
}

TEST_F(SendQueue, LeavesTheHostsMutexUnlocked)
{
    pollTwo();

    nextFrame();

    ASSERT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST_F(SendQueue, WithoutAMutexSeesNoRecipeRequest)
{
    int result = -1;
    dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), &result, "1#0#0#3#10", nullptr);
    pollTwo();
    requestRecipeWrite();

    EXPECT_EQ(serveTimes(2), (Served { "4 1 D 0 1", "4 1 D 5 1" }));
}

TEST_F(SendQueue, WithoutAHostBlockSeesNoRecipeRequest)
{
    int result = -1;
    dx4.initProperty(nullptr, 0, recipeBuffer.data(), &result, "1#0#0#3#10", &mutex);
    pollTwo();

    EXPECT_EQ(serveTimes(2), (Served { "4 1 D 0 1", "4 1 D 5 1" }));
}

namespace {

struct ReservedPhase {
    const char *name;
    int phase;
    const char *expected;
};

class ReserveByPhase : public SendQueue, public ::testing::WithParamInterface<ReservedPhase> { };

} // namespace

TEST_P(ReserveByPhase, BuildsTheFrameOfTheCurrentVariable)
{
    set(1, "F", 9, { 1 });
    state.curVar = variable(4, "F", 0x0205, 1, 6);
    state.curVar.data[0] = 0xCD;
    state.curVar.data[1] = 0xAB;
    state.phase = GetParam().phase;
    requestRecipeRead();

    const std::string sent = nextFrame();

    EXPECT_EQ(sent, GetParam().expected);
    EXPECT_EQ(state.phase, GetParam().phase);
    EXPECT_EQ(text(state.curVar), "4 F 517 1");
    EXPECT_EQ(state.curVar.varKind, 6);
    EXPECT_EQ(state.tryCount, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Phases, ReserveByPhase,
    ::testing::Values(ReservedPhase { "Idle", 0, "" }, ReservedPhase { "Unused", 1, "" },
                      ReservedPhase { "Write", 2, "04 06 F2 05 AB CD 15 83" },
                      ReservedPhase { "ConditionRead", 3, "04 03 F2 05 00 01 A6 E6" },
                      ReservedPhase { "CyclicRead", 4, "04 03 F2 05 00 01 A6 E6" },
                      ReservedPhase { "RecipeWrite", 5, "04 06 F2 05 AB CD 15 83" },
                      ReservedPhase { "RecipeRead", 6, "04 03 F2 05 00 01 A6 E6" },
                      ReservedPhase { "PastTheLast", 7, "" }, ReservedPhase { "Negative", -1, "" }),
    [](const auto &row) { return std::string(row.param.name); });
