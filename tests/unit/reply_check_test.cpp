// SPDX-License-Identifier: MIT
// Length and CRC of a reply against the frame that it answers.
#include "korvane_dx4/reply.h"

#include "driver_state.h"

namespace {

struct Check {
    const char *name;
    int replyLength;
    int replyDataLength;
    std::vector<unsigned char> reply;
    int expected;
};

class ReplyCheck : public DriverState, public ::testing::WithParamInterface<Check> { };

} // namespace

TEST_P(ReplyCheck, JudgesByLengthAndCrc)
{
    FRAME_PRO head;
    head.replyLength = GetParam().replyLength;
    head.replyDataLength = GetParam().replyDataLength;
    driver.sendFrames = { head, FRAME_PRO() };
    std::vector<unsigned char> bytes = GetParam().reply;

    EXPECT_EQ(check_rcv_data(bytes.data(), static_cast<int>(bytes.size())), GetParam().expected);
    EXPECT_EQ(driver.sendFrames.size(), 2);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReplyCheck,
    ::testing::Values(
        Check { "Data", 7, 2, { 0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33 }, 1 },
        Check {
            "NegativeDataLengthIsData", 7, -2, { 0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33 }, 1 },
        Check { "NoData", 7, 0, { 0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33 }, 2 },
        Check { "LowCrcByte", 7, 2, { 0x01, 0x03, 0x02, 0x12, 0x34, 0xB4, 0x33 }, 0 },
        Check { "HighCrcByte", 7, 2, { 0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x32 }, 0 },
        Check { "Payload", 7, 2, { 0x00, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33 }, 0 },
        Check { "TooLongForTheFrame", 6, 2, { 0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33 }, 0 },
        Check { "TooShortForTheFrame", 8, 2, { 0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33 }, 0 },
        Check { "NothingExpected", 0, 0, {}, 2 },
        Check { "NothingExpectedDespiteData", 0, 2, {}, 2 },
        Check { "NothingReceived", 7, 2, {}, 0 },
        Check { "SomethingWhereNothingIsExpected", 0, 0, { 0xFF, 0xFF }, 0 },
        Check { "TwoBytesAreTheStartOfTheCrc", 2, 0, { 0xFF, 0xFF }, 2 },
        Check { "TwoBytesWithData", 2, 2, { 0xFF, 0xFF }, 1 },
        Check { "TwoBytesLowWrong", 2, 0, { 0xFE, 0xFF }, 0 },
        Check { "TwoBytesHighWrong", 2, 0, { 0xFF, 0xFE }, 0 },
        Check { "OneByteIsTooFewForACrc", 1, 0, { 0xFF }, 0 }),
    [](const auto &row) { return std::string(row.param.name); });

namespace {

class LongReplies : public DriverState { };

} // namespace

TEST_F(LongReplies, CheckTheCrcOverTheLow16BitsOfTheirLength)
{
    // 65538 bytes: the CRC covers 65536 mod 65536 = 0 bytes and so keeps its start value.
    FRAME_PRO head;
    head.replyLength = 65538;
    head.replyDataLength = 2;
    driver.sendFrames = { head };
    std::vector<unsigned char> bytes(65538, 0x00);
    bytes[65536] = 0xFF;
    bytes[65537] = 0xFF;

    EXPECT_EQ(check_rcv_data(bytes.data(), 65538), 1);
}
