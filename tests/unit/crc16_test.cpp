// SPDX-License-Identifier: MIT
// The CRC against published values and frames.
#include "wire/crc16.h"

#include <gtest/gtest.h>

namespace {

// The check value published for this CRC is that of the digits "123456789".
TEST(Crc16, HasThePublishedCheckValue)
{
    const unsigned char bytes[] = { '1', '2', '3', '4', '5', '6', '7', '8', '9' };

    EXPECT_EQ(dx4::crc16(bytes, 9), 0x4B37);
}

TEST(Crc16, OfAReadRequestOfRegister0)
{
    const unsigned char bytes[] = { 0x01, 0x03, 0x00, 0x00, 0x00, 0x01 };

    EXPECT_EQ(dx4::crc16(bytes, 6), 0x0A84);
}

TEST(Crc16, OfAReadRequestOfTheFaultCode)
{
    const unsigned char bytes[] = { 0x01, 0x03, 0x20, 0x01, 0x00, 0x01 };

    EXPECT_EQ(dx4::crc16(bytes, 6), 0x0ADE);
}

TEST(Crc16, OfOneByte)
{
    const unsigned char bytes[] = { 0x01 };

    EXPECT_EQ(dx4::crc16(bytes, 1), 0x807E);
}

TEST(Crc16, OfNoByteIsTheInitialValue)
{
    const unsigned char bytes[] = { 0x01 };

    EXPECT_EQ(dx4::crc16(bytes, 0), 0xFFFF);
}

TEST(Crc16, OfDataWithItsCrcBehindItIsZero)
{
    const unsigned char bytes[] = { 0x01, 0x03, 0x20, 0x01, 0x00, 0x01, 0xDE, 0x0A };

    EXPECT_EQ(dx4::crc16(bytes, 8), 0);
}

TEST(Crc16, DependsOnTheOrderOfBytes)
{
    const unsigned char bytes[] = { 0x03, 0x01, 0x00, 0x00, 0x00, 0x01 };

    EXPECT_NE(dx4::crc16(bytes, 6), 0x0A84);
}

} // namespace
