// SPDX-License-Identifier: MIT
// A host that goes to the ends of the numbers, or breaks the rules of its callback, harms nothing.
#include "cycle_fixture.h"

#include <limits>

namespace {

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

class UnrulyHost : public CycleFixture {
protected:
    UnrulyHost() { init("1#0#0#3#10"); }
};

class AddressAtTheEnds : public UnrulyHost, public ::testing::WithParamInterface<int> { };

} // namespace

TEST_P(AddressAtTheEnds, IsReadAsZeroAndThenHoldsWhatIsWritten)
{
    EXPECT_EQ(data(1, "D", GetParam(), 1), "00 00");

    set(1, "D", GetParam(), { 0x1234 });

    EXPECT_EQ(data(1, "D", GetParam(), 1), "34 12");
    EXPECT_EQ(state.dataAreas.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(Addresses, AddressAtTheEnds,
                         ::testing::Values(lowest, lowest + 1, -0x40000001, -0x40000000, -1,
                                           0x40000000, highest - 1, highest));

TEST_F(UnrulyHost, ARunPastTheHighestAddressGoesOnAtTheLowest)
{
    EXPECT_EQ(data(1, "D", highest, 2), "00 00 00 00");

    set(1, "D", lowest, { 7 });

    EXPECT_EQ(data(1, "D", highest, 2), "00 00 07 00");
    EXPECT_EQ(state.dataAreas.size(), 2);
}

TEST_F(UnrulyHost, AStartOfTheLinkInsideTheCallbackLeavesNoRegisterUnderAnothersName)
{
    merge({ keyAddress(1, "D", 0, 3) });
    insideCallback = [this](int, int, const QString &, int) {
        insideCallback = nullptr;
        init("1#0#0#3#10");
        data(9, "F", 500, 1);
    };
    nextFrame();

    replyWithCrc("01 03 06 00 11 66 77 66 77");

    EXPECT_EQ(data(9, "F", 500, 2), "00 00 00 00");
}

TEST_F(UnrulyHost, ACallbackTakenAwayWhileABitIsReportedIsNotCalledForTheRegister)
{
    merge({ keyAddress(1, "D", 4, 1) });
    state.dataAreas[0].bitMask = 1;
    insideCallback = [this](int, int, const QString &, int) {
        state.valueChangeCallback = nullptr;
    };
    nextFrame();

    EXPECT_EQ(replyWithCrc("01 03 02 00 01"), dx4::ReplyAccepted);

    EXPECT_EQ(calls, std::vector<std::string> { "1 1 D_bit 64" });
}

TEST_F(UnrulyHost, AnOffsetBeforeTheReplyGivesZerosAndThenItsBytes)
{
    merge({ keyAddress(1, "D", 0, 3) });
    nextFrame();
    state.sendFrames[0].replyDataOffset = -3;

    answer({ 0x1122, 0x3344, 0x5566 });

    EXPECT_EQ(data(1, "D", 0, 3), "00 00 01 00 06 03") << "01 03 06 11 22 ... from the third byte";
}

TEST_F(UnrulyHost, AnOffsetNearTheEndOfTheReplyGivesWhatIsLeftAndThenZeros)
{
    merge({ keyAddress(1, "D", 0, 3) });
    nextFrame();
    state.sendFrames[0].replyDataOffset = 8;

    const int result = replyWithCrc("01 03 06 11 22 33 44 55 66");

    EXPECT_EQ(result, dx4::ReplyAccepted);
    EXPECT_EQ(data(1, "D", 0, 3), "2A 66 00 18 00 00") << "the CRC is 2A 18";
}

// The callback may not edit the cache. One that does all the same gets no second record of a
// register, neither in the call that it runs in nor in a later one.
TEST_F(UnrulyHost, ARecordThatTheCallbackAddsIsFoundByTheCallItRunsIn)
{
    merge({ keyAddress(1, "D", 0, 2) });
    insideCallback = [this](int, int, const QString &, int address) {
        if (address == 1) {
            record(9, "F", 0);
            record(1, "D", 2).value[0] = 0x77;
        }
    };

    set(1, "D", 0, { 1, 2, 3 });

    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 1; 9 F 0; 1 D 2");
    EXPECT_EQ(data(1, "D", 0, 3), "01 00 02 00 03 00");
}

TEST_F(UnrulyHost, ARecordThatTheCallbackAddsIsFoundByTheCallsBehindIt)
{
    merge({ keyAddress(1, "D", 0, 2) });
    insideCallback = [this](int, int, const QString &, int address) {
        if (address == 1)
            record(1, "D", 500).value[0] = 0x77;
    };
    set(1, "D", 0, { 1, 2 });

    EXPECT_EQ(data(1, "D", 500, 1), "77 00");
    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 1; 1 D 500");
}

TEST_F(UnrulyHost, ARegisterWhoseRecordTheCallbackRenamesGetsAnotherForItsWrite)
{
    merge({ keyAddress(1, "D", 0, 2) });
    insideCallback = [this](int, int, const QString &, int address) {
        if (address == 0)
            record(1, "D", 0).address = 700;
    };

    set(1, "D", 0, { 1, 2 });

    EXPECT_EQ(cacheKeys(), "1 D 700; 1 D 1; 1 D 0");
    EXPECT_EQ(data(1, "D", 0, 2), "01 00 02 00");
}

// Records are taken as one run only where each continues the one before it.
TEST_F(UnrulyHost, ARecordThatTheCallbackRenamesIsNoNeighbourOfTheNext)
{
    merge({ keyAddress(1, "D", 0, 2) });
    record(1, "D", 0).word1 = 0; // whoever touches the list makes the driver forget what it knew
    insideCallback = [this](int, int, const QString &, int address) {
        if (address == 0)
            record(1, "D", 0).address = 700;
    };
    nextFrame();

    replyWithCrc("01 03 04 11 22 33 44");

    EXPECT_EQ(cacheKeys(), "1 D 700; 1 D 1");
    EXPECT_EQ(data(1, "D", 700, 1), "22 11");
    EXPECT_EQ(data(1, "D", 0, 2), "00 00 44 33");
}
