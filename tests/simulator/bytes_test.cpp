// SPDX-License-Identifier: MIT
// Frames as bytes: their CRC, their words and their text form.
#include "simulator/bytes.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

struct HexRow {
    const char *name;
    const char *text;
    Bytes bytes;
};

class HexTexts : public ::testing::TestWithParam<HexRow> { };

} // namespace

TEST_P(HexTexts, EndWhereNoDigitIs)
{
    EXPECT_EQ(fromHex(GetParam().text), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Rows, HexTexts,
                         ::testing::Values(HexRow { "Nothing", "", {} },
                                           HexRow { "LowerCase", "af fa", { 0xAF, 0xFA } },
                                           HexRow { "UpperCase", "AF FA", { 0xAF, 0xFA } },
                                           HexRow { "Digits", "09 90", { 0x09, 0x90 } },
                                           HexRow { "WithoutBlanks", "0109", { 0x01, 0x09 } },
                                           HexRow { "HalfAByte", "01 2", { 0x01 } },
                                           HexRow { "BeforeZero", "01 0/ 02", { 0x01 } },
                                           HexRow { "BehindNine", "01 0: 02", { 0x01 } },
                                           HexRow { "BeforeA", "01 0@ 02", { 0x01 } },
                                           HexRow { "BehindF", "01 0G 02", { 0x01 } },
                                           HexRow { "BeforeSmallA", "01 0` 02", { 0x01 } },
                                           HexRow { "BehindSmallF", "01 0g 02", { 0x01 } }),
                         [](const ::testing::TestParamInfo<HexRow> &row) {
                             return row.param.name;
                         });

TEST(Crc, IsThatOfTheModbusProtocol)
{
    const Bytes check = { '1', '2', '3', '4', '5', '6', '7', '8', '9' };

    EXPECT_EQ(crcOf(check, 9), 0x4B37);
    EXPECT_EQ(crcOf(check, 20), 0x4B37);
    EXPECT_EQ(crcOf(check, 0), 0xFFFF);
}

TEST(Crc, IsThatOfTheBytesBefore)
{
    EXPECT_TRUE(hasGoodCrc({ 0x01, 0x03, 0x20, 0x01, 0x00, 0x01, 0xDE, 0x0A }));
    EXPECT_FALSE(hasGoodCrc({ 0x01, 0x03, 0x20, 0x01, 0x00, 0x01, 0xDF, 0x0A }));
    EXPECT_FALSE(hasGoodCrc({ 0x01, 0x03, 0x20, 0x01, 0x00, 0x01, 0xDE, 0x0B }));
}

TEST(Crc, NeedsAStationAndAFunction)
{
    EXPECT_TRUE(hasGoodCrc({ 0x01, 0x03, 0x40, 0x21 }));
    EXPECT_FALSE(hasGoodCrc({ 0x01, 0x7E, 0x80 }));
    EXPECT_FALSE(hasGoodCrc({ 0xFF, 0xFF }));
    EXPECT_FALSE(hasGoodCrc({}));
}

TEST(Crc, IsRenewedWhereAFrameHasOne)
{
    Bytes shortest = { 0x01, 0x03, 0x00, 0x00 };
    Bytes tooShort = { 0x01, 0x03, 0x00 };

    renewCrc(shortest);
    renewCrc(tooShort);

    EXPECT_EQ(shortest, Bytes({ 0x01, 0x03, 0x40, 0x21 }));
    EXPECT_EQ(tooShort, Bytes({ 0x01, 0x03, 0x00 }));
}

TEST(Words, AreZeroWhereTheFrameIsTooShort)
{
    const Bytes frame = { 0x12, 0x34, 0x56 };

    EXPECT_EQ(wordAt(frame, 0), 0x1234);
    EXPECT_EQ(wordAt(frame, 1), 0x3456);
    EXPECT_EQ(wordAt(frame, 2), 0);
    EXPECT_EQ(wordAt(frame, 3), 0);
    EXPECT_EQ(wordAt({}, 0), 0);
}
