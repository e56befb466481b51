// SPDX-License-Identifier: MIT
// How a write that was sent ends.
#include "cycle_fixture.h"

using Calls = std::vector<std::string>;

namespace {

class WriteOutcomes : public CycleFixture {
protected:
    WriteOutcomes() { init("1#0#0#1#4"); }
};

} // namespace

TEST_F(WriteOutcomes, AServedWriteBecomesTheDeviceValue)
{
    record(1, "F", 5).flags = 1;
    set(1, "F", 5, { 0x1234 });
    nextFrame();
    calls.clear();

    EXPECT_EQ(echo(), 1);
    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(toHex(record(1, "F", 5).value, 2), "34 12");
    EXPECT_EQ(data(1, "F", 5, 1), "34 12");
}

TEST_F(WriteOutcomes, AFailedWriteOfTheDeviceValueReportsNothing)
{
    merge({ keyAddress(1, "F", 5, 1) });
    set(1, "F", 5, { 0 });
    nextFrame();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(record(1, "F", 5).writePending, 0);
}

TEST_F(WriteOutcomes, AFailedWriteShowsTheDeviceValueWhileItIsReported)
{
    merge({ keyAddress(1, "F", 5, 1) });
    nextFrame();
    answer({ 0x0099 });
    set(1, "F", 5, { 0x1234 });
    nextFrame();
    calls.clear();
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(data(1, "F", 5, 1)); };

    silence();

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 5" }));
    EXPECT_EQ(seen, (Calls { "99 00", "99 00" }));
}

TEST_F(WriteOutcomes, ASplitWriteIsSettledPieceByPiece)
{
    set(1, "F", 5, { 1, 2, 3, 4, 5 });

    EXPECT_EQ(serve(), "2 1 F 5 4");
    EXPECT_EQ(record(1, "F", 8).writePending, 0);
    EXPECT_EQ(record(1, "F", 9).writePending, 1);
    EXPECT_EQ(serve(), "2 1 F 9 1");
    EXPECT_EQ(record(1, "F", 9).writePending, 0);
}
