// SPDX-License-Identifier: MIT
// A host that reads, writes and asks for reads from inside the callback.
#include "cycle_fixture.h"

using Calls = std::vector<std::string>;

namespace {

class CallbackReentry : public CycleFixture {
protected:
    CallbackReentry() { init("1#0#0#1#10"); }

    /// Runs `action` inside the first callback only.
    void onceInsideCallback(std::function<void()> action)
    {
        insideCallback = [action, done = false](int, int, const QString &, int) mutable {
            if (done)
                return;
            done = true;
            action();
        };
    }
};

} // namespace

TEST_F(CallbackReentry, AReadAheadSeesTheOldValuesOfTheSameReply)
{
    merge({ keyAddress(1, "D", 5, 2) });
    nextFrame();
    answer({ 0x0001, 0x0002 });
    nextFrame();
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(data(1, "D", 5, 2)); };

    answer({ 0x0011, 0x0022 });

    EXPECT_EQ(seen, (Calls { "11 00 02 00", "11 00 22 00" }));
}

TEST_F(CallbackReentry, AReadAheadCreatesTheRecordThatTheReplyThenFills)
{
    readOnce(1, "D", 5, 2);
    record(1, "D", 5).flags = 1;
    nextFrame();
    onceInsideCallback([this] { data(1, "D", 6, 1); });

    answer({ 0x0011, 0x0022 });

    EXPECT_EQ(cacheKeys(), "1 D 5; 1 D 6");
    EXPECT_EQ(data(1, "D", 5, 2), "11 00 22 00");
}

TEST_F(CallbackReentry, AWriteOfTheReportedRegisterIsShownAndQueued)
{
    merge({ keyAddress(1, "F", 5, 1) });
    nextFrame();
    onceInsideCallback([this] { set(1, "F", 5, { 0x0099 }); });

    answer({ 0x0011 });

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 5" }));
    EXPECT_EQ(data(1, "F", 5, 1), "99 00");
    EXPECT_EQ(toHex(record(1, "F", 5).value, 2), "11 00");
    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 99 6A A1");
}

TEST_F(CallbackReentry, AWriteAheadEndsWithTheChangedValueOfTheSameReply)
{
    merge({ keyAddress(1, "F", 5, 2) });
    nextFrame();
    onceInsideCallback([this] { set(1, "F", 6, { 0x0099 }); });

    answer({ 0x0011, 0x0022 });

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 6", "1 1 F 6" }));
    EXPECT_EQ(record(1, "F", 6).writePending, 0);
    EXPECT_EQ(data(1, "F", 6, 1), "22 00");
    EXPECT_EQ(text(state.writeList), "1 F 6 1");
}

TEST_F(CallbackReentry, AWriteAheadOfAnUnchangedValueStaysPending)
{
    merge({ keyAddress(1, "F", 5, 2) });
    nextFrame();
    onceInsideCallback([this] { set(1, "F", 6, { 0x0099 }); });

    answer({ 0x0011, 0 });

    EXPECT_EQ(record(1, "F", 6).writePending, 1);
    EXPECT_EQ(data(1, "F", 6, 1), "99 00");
}

TEST_F(CallbackReentry, OfTwoNestedWritesTheOuterIsShown)
{
    merge({ keyAddress(1, "F", 5, 1) });
    onceInsideCallback([this] { set(1, "F", 5, { 0x0022 }); });

    set(1, "F", 5, { 0x0011 });

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 5" }));
    EXPECT_EQ(data(1, "F", 5, 1), "11 00");
    EXPECT_EQ(text(state.writeList), "1 F 5 1; 1 F 5 1");
    EXPECT_EQ(toHex(state.writeList.at(0).data, 2), "11 00");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 2), "22 00");
}

TEST_F(CallbackReentry, AConditionReadFromAChangeReportIsQueued)
{
    merge({ keyAddress(1, "SW", 0, 1) });
    nextFrame();
    onceInsideCallback([this] { readOnce(1, "FU", 0, 1); });

    answer({ 4 });

    EXPECT_EQ(text(state.conditionList), "1 FU 0 1");
    EXPECT_EQ(serve(), "3 1 FU 0 1");
}

TEST_F(CallbackReentry, ANewReadFromTheOutcomeOfASuccessStays)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    onceInsideCallback([this] { readOnce(1, "D", 6, 1); });

    answer({ 0 });

    EXPECT_EQ(text(state.conditionList), "1 D 6 1");
    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
}

TEST_F(CallbackReentry, TheSameReadFromTheOutcomeIsQueuedBehindTheHeadAndReportsAgain)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    onceInsideCallback([this] { readOnce(1, "D", 5, 1); });

    answer({ 0 });
    EXPECT_EQ(text(state.conditionList), "1 D 5 1");

    serve();
    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0", "-1 -1 -1 0" }));
}

TEST_F(CallbackReentry, ANewReadFromTheOutcomeOfAFailureIsDroppedWithAllThatWait)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    onceInsideCallback([this] { readOnce(1, "D", 6, 1); });

    silence();

    EXPECT_EQ(text(state.conditionList), "");
    EXPECT_EQ(text(state.conditionVar), "1 D 6 1");
}

TEST_F(CallbackReentry, AReadFromAnEarlierReportOfTheReplyTakesTheOutcomeOver)
{
    record(1, "D", 5).flags = 1;
    readOnce(1, "D", 5, 1);
    nextFrame();
    onceInsideCallback([this] { readOnce(1, "D", 6, 1); });

    answer({ 7 });

    EXPECT_EQ(calls, (Calls { "1 1 D 5" }));
    EXPECT_EQ(text(state.conditionList), "1 D 6 1");
}

TEST_F(CallbackReentry, ANewWriteFromAFailureIsDroppedFromViewByTheSecondSettlement)
{
    merge({ keyAddress(1, "F", 5, 1) });
    set(1, "F", 5, { 0x0077 });
    nextFrame();
    calls.clear();
    onceInsideCallback([this] { set(1, "F", 5, { 0x0099 }); });

    silence();

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 5", "1 1 F 5" }));
    EXPECT_EQ(data(1, "F", 5, 1), "00 00");
    EXPECT_EQ(text(state.writeList), "1 F 5 1");
    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 99 6A A1");
}

TEST_F(CallbackReentry, AWriteFromTheFirstReportOfAFailureReachesTheRegistersThatFollow)
{
    merge({ keyAddress(1, "F", 5, 2) });
    set(1, "F", 5, { 0x0011, 0x0022 });
    nextFrame();
    calls.clear();
    onceInsideCallback([this] { set(1, "F", 6, { 0 }); });

    silence();

    // Register 6 is back at the device value before the failure gets there: nothing differs.
    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 6", "1 1 F 5" }));
    EXPECT_EQ(data(1, "F", 5, 2), "00 00 00 00");
    EXPECT_EQ(text(state.writeList), "1 F 6 1");
}

TEST_F(CallbackReentry, TheCacheMayGrowInsideAReply)
{
    merge({ keyAddress(1, "D", 5, 3) });
    nextFrame();
    int next = 100;
    insideCallback = [&](int, int, const QString &, int) {
        data(1, "F", next, 500);
        next += 500;
    };

    answer({ 0x0011, 0x0022, 0x0033 });

    EXPECT_EQ(state.dataAreas.size(), 1503);
    EXPECT_EQ(data(1, "D", 5, 3), "11 00 22 00 33 00");
}

TEST_F(CallbackReentry, TheCacheMayGrowInsideAWrite)
{
    merge({ keyAddress(1, "F", 5, 3) });
    int next = 100;
    insideCallback = [&](int, int, const QString &, int) {
        data(1, "F", next, 500);
        next += 500;
    };

    set(1, "F", 5, { 0x0011, 0x0022, 0x0033 });

    EXPECT_EQ(state.dataAreas.size(), 1503);
    EXPECT_EQ(data(1, "F", 5, 3), "11 00 22 00 33 00");
}

TEST_F(CallbackReentry, TheCacheMayGrowBetweenTheReportsOfOneChange)
{
    record(1, "D", 3).flags = 7;
    record(1, "D", 3).bitMask = 0xFFFF;
    int next = 100;
    insideCallback = [&](int, int, const QString &, int) {
        data(1, "F", next, 200);
        next += 200;
    };

    set(1, "D", 3, { 0x8001 });

    EXPECT_EQ(
        calls,
        (Calls { "1 1 D_bit 48", "1 1 D_bit 63", "1 1 D 3", "1 1 D_double 3", "1 1 D_double 2" }));
    EXPECT_EQ(data(1, "D", 3, 1), "01 80");
}

TEST_F(CallbackReentry, TheListsMayGrowWhileARequestIsClosed)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    onceInsideCallback([this] {
        for (int i = 0; i < 400; ++i) {
            readOnce(1, "D", 100 + i, 1);
            set(1, "F", i, { 1 });
        }
    });

    answer({ 0 });

    EXPECT_EQ(state.conditionList.size(), 400);
    EXPECT_EQ(text(state.conditionList.first()), "1 D 100 1");
    EXPECT_EQ(state.writeList.size(), 400);
}

TEST_F(CallbackReentry, WritesMayGrowTheirListWhileAWriteIsGivenUp)
{
    merge({ keyAddress(1, "F", 5, 1) });
    set(1, "F", 5, { 0x0077 });
    nextFrame();
    onceInsideCallback([this] {
        for (int i = 0; i < 400; ++i)
            set(2, "F", i, { 1 });
    });

    silence();

    EXPECT_EQ(state.writeList.size(), 400);
    EXPECT_EQ(text(state.writeList.first()), "2 F 0 1");
    EXPECT_EQ(data(1, "F", 5, 1), "00 00");
}

TEST_F(CallbackReentry, ARecipeUnitReportMayWrite)
{
    state.rcpVars = { recipeVar(1, 1, "F", 16, 1, 4), recipeVar(1, 1, "F", 17, 1, 8) };
    state.mergeIndexList = { 0 };
    state.rcpSendVars = { recipeVar(1, 1, "F", 16, 2, 0) };
    hostBlock[60116] = 1;
    nextFrame();
    onceInsideCallback([this] { set(1, "F", 16, { 0x0042 }); });

    EXPECT_EQ(answer({ 0x1234, 0x5678 }), 1);
    EXPECT_EQ(calls, (Calls { "0 -1 RWI 4", "0 -1 RWI 5", "0 -1 RWI 8", "0 -1 RWI 9" }));
    EXPECT_EQ(data(1, "F", 16, 1), "42 00");
    EXPECT_EQ(nextFrame(), "01 06 F0 10 00 42 3B 3E");
}
