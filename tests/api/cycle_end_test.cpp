// SPDX-License-Identifier: MIT
// What closing a request does to the list that it came from.
#include "cycle_fixture.h"

using Calls = std::vector<std::string>;

namespace {

class CycleEnd : public CycleFixture {
protected:
    CycleEnd() { init("1#0#0#1#10"); }
};

} // namespace

TEST_F(CycleEnd, AServedWriteLeavesItsList)
{
    set(1, "F", 5, { 0x0011 });
    set(1, "F", 9, { 0x0022 });
    nextFrame();

    echo();

    EXPECT_EQ(text(state.writeList), "1 F 9 1");
    EXPECT_EQ(toHex(record(1, "F", 5).value, 2), "11 00");
    EXPECT_EQ(record(1, "F", 9).writePending, 1);
    EXPECT_EQ(state.phase, 2);
}

TEST_F(CycleEnd, AGivenUpWriteLeavesItsListAndShowsTheDeviceValueAgain)
{
    set(1, "F", 5, { 0x0011 });
    set(1, "F", 9, { 0x0022 });
    nextFrame();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(text(state.writeList), "1 F 9 1");
    EXPECT_EQ(data(1, "F", 5, 1), "00 00");
    EXPECT_EQ(data(1, "F", 9, 1), "22 00");
}

TEST_F(CycleEnd, SettlesTheHeadOfTheWriteListAsItIsBesidesTheFrame)
{
    set(1, "F", 5, { 0x0011 });
    set(1, "F", 9, { 0x0022 });
    nextFrame();
    state.writeList.removeFirst();

    echo();

    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(record(1, "F", 9).writePending, 0);
    EXPECT_EQ(data(1, "F", 9, 1), "22 00");
    EXPECT_EQ(text(state.writeList), "");
}

TEST_F(CycleEnd, AServedConditionReadReportsZero)
{
    readOnce(1, "D", 5, 1);
    nextFrame();

    answer({ 0 });

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
    EXPECT_EQ(text(state.conditionList), "");
}

TEST_F(CycleEnd, AGivenUpConditionReadReportsMinusOne)
{
    readOnce(1, "D", 5, 1);
    nextFrame();

    silence();

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 -1" }));
    EXPECT_EQ(text(state.conditionList), "");
}

TEST_F(CycleEnd, ReportsTheOutcomeAfterTheChangedValues)
{
    merge({ keyAddress(1, "D", 5, 2) });
    readOnce(1, "D", 5, 2);
    nextFrame();

    answer({ 7, 8 });

    EXPECT_EQ(calls, (Calls { "1 1 D 5", "1 1 D 6", "-1 -1 -1 0" }));
}

TEST_F(CycleEnd, ReportsTheOutcomeBeforeTheReadLeavesItsList)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    std::string inside;
    insideCallback = [&](int, int, const QString &, int) { inside = text(state.conditionList); };

    answer({ 0 });

    EXPECT_EQ(inside, "1 D 5 1");
    EXPECT_EQ(text(state.conditionList), "");
}

namespace {

struct OtherRead {
    const char *name;
    int station;
    const char *type;
    int address;
    int count;
};

class ClosedSilently : public CycleEnd, public ::testing::WithParamInterface<OtherRead> { };

} // namespace

TEST_P(ClosedSilently, WhenServed)
{
    readOnce(1, "D", 5, 1);
    readOnce(GetParam().station, GetParam().type, GetParam().address, GetParam().count);
    nextFrame();

    answer({ 0 });

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(state.conditionList.size(), 1);
}

TEST_P(ClosedSilently, WhenGivenUpWithAllThatWait)
{
    readOnce(1, "D", 5, 1);
    readOnce(GetParam().station, GetParam().type, GetParam().address, GetParam().count);
    nextFrame();

    silence();

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(text(state.conditionList), "");
}

INSTANTIATE_TEST_SUITE_P(DifferentFromTheLastRequest, ClosedSilently,
                         ::testing::Values(OtherRead { "InStation", 2, "D", 5, 1 },
                                           OtherRead { "InType", 1, "F", 5, 1 },
                                           OtherRead { "InAddress", 1, "D", 6, 1 },
                                           OtherRead { "InCount", 1, "D", 5, 2 }),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(CycleEnd, OfASplitReadReportsTheLastPieceOnly)
{
    readOnce(1, "D", 0, 25);

    serve();
    EXPECT_EQ(calls, Calls {});
    serve();
    EXPECT_EQ(calls, Calls {});
    serve();
    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
}

TEST_F(CycleEnd, OfAnEqualReadClosedLaterReportsAgain)
{
    readOnce(1, "D", 5, 1);
    readOnce(1, "D", 5, 1);

    serve();
    serve();

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0", "-1 -1 -1 0" }));
}

TEST_F(CycleEnd, IgnoresTheKindWhenComparingWithTheLastRequest)
{
    readOnce(1, "D", 5, 1, 0, 1);
    nextFrame();
    state.conditionVar.varKind = 99;

    answer({ 0 });

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
}

TEST_F(CycleEnd, OfAFailedReadDropsAllThatWait)
{
    readOnce(1, "D", 5, 1);
    readOnce(1, "D", 6, 1);
    readOnce(1, "D", 7, 1);
    nextFrame();

    silence();

    EXPECT_EQ(text(state.conditionList), "");
    EXPECT_EQ(nextFrame(), "");
}

TEST_F(CycleEnd, AfterADroppedLastRequestAnEqualOneReportsAgain)
{
    readOnce(1, "D", 5, 1);
    readOnce(1, "D", 6, 1);
    nextFrame();
    silence();

    readOnce(1, "D", 6, 1);
    serve();

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
}

TEST_F(CycleEnd, ACyclicReadMovesToTheTail)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1), keyAddress(1, "D", 9, 1) });
    nextFrame();

    answer({ 0 });

    EXPECT_EQ(text(state.readList), "1 D 5 1; 1 D 9 1; 1 D 0 1");
}

TEST_F(CycleEnd, AGivenUpCyclicReadMovesToTheTailToo)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1), keyAddress(1, "D", 9, 1) });
    nextFrame();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(text(state.readList), "1 D 5 1; 1 D 9 1; 1 D 0 1");
    EXPECT_EQ(calls, Calls {});
}

TEST_F(CycleEnd, TwoCyclicReadsChangePlaces)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });

    serve();

    EXPECT_EQ(text(state.readList), "1 D 5 1; 1 D 0 1");
}

TEST_F(CycleEnd, ASingleCyclicReadStays)
{
    merge({ keyAddress(1, "D", 0, 1) });

    serve();

    EXPECT_EQ(text(state.readList), "1 D 0 1");
    EXPECT_EQ(state.phase, 4);
}

namespace {

class OtherPhases : public CycleEnd, public ::testing::WithParamInterface<int> { };

} // namespace

TEST_P(OtherPhases, CloseNothing)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });
    nextFrame();
    readOnce(1, "D", 0, 1);
    set(1, "F", 0, { 3 });
    calls.clear();
    state.rcpIndex = 4;
    hostBlock[60115] = 1;
    hostBlock[60116] = 1;
    state.phase = GetParam();

    EXPECT_EQ(answer({ 0 }), 1);

    EXPECT_EQ(text(state.readList), "1 D 0 1; 1 D 5 1");
    EXPECT_EQ(text(state.conditionList), "1 D 0 1");
    EXPECT_EQ(text(state.writeList), "1 F 0 1");
    EXPECT_EQ(record(1, "F", 0).writePending, 1);
    EXPECT_EQ(state.rcpIndex, 4);
    EXPECT_EQ(hostBlock[60115], 1);
    EXPECT_EQ(hostBlock[60116], 1);
    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(state.phase, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Values, OtherPhases, ::testing::Values(-1, 0, 1, 7));

TEST_F(CycleEnd, WithAnEmptyConditionListReportsNothing)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    state.conditionList.clear();

    EXPECT_EQ(answer({ 0 }), 1);
    EXPECT_EQ(calls, Calls {});
}

TEST_F(CycleEnd, WithAnEmptyWriteListSettlesOnlyTheFrame)
{
    record(1, "F", 5).flags = 1;
    set(1, "F", 5, { 0x0011 });
    nextFrame();
    state.writeList.clear();
    calls.clear();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(calls, (Calls { "1 1 F 5" }));
}

TEST_F(CycleEnd, WithAnEmptyReadListMovesNothing)
{
    merge({ keyAddress(1, "D", 0, 1) });
    nextFrame();
    state.readList.clear();

    EXPECT_EQ(answer({ 0 }), 1);
    EXPECT_EQ(text(state.readList), "");
}
