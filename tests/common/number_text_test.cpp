// SPDX-License-Identifier: MIT
// Numbers that people type; what looks like one stands in the tests of the host.
#include "common/number_text.h"

#include <gtest/gtest.h>

#include <string>

using namespace dx4::common;

TEST(UnsignedText, HasSixtyFourBits)
{
    EXPECT_EQ(parseUnsigned("0"), 0U);
    EXPECT_EQ(parseUnsigned("18446744073709551615"), 18446744073709551615U);
    EXPECT_EQ(parseUnsigned("18446744073709551616"), std::nullopt);
    EXPECT_EQ(parseUnsigned("9999999999999999999999"), std::nullopt);
}

TEST(UnsignedText, IsDigitsAlone)
{
    for (const char *other : { "", "-1", "+1", " 1", "1 ", "0x1", "1e3", "1.0" })
        EXPECT_EQ(parseUnsigned(other), std::nullopt) << other;
}

TEST(DecimalText, LargerThanADoubleIsNone)
{
    EXPECT_EQ(parseDecimal(std::string(400, '9')), std::nullopt);
}
