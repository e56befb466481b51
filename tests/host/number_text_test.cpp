// SPDX-License-Identifier: MIT
// Numbers that people type: what is one, and what looks like one.
#include "host/base/number_text.h"

#include <gtest/gtest.h>

#include <limits>

using namespace dx4::host;

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

/// What a library that means well takes for a number.
const char *const nearlyNumbers[] = {
    "",       " ",       "+5",   " 5",     "5 ",   "5\t", "5x",    "1e3",   "5,0",
    "0x",     "x10",     "0X10", "0x0x10", "--5",  "-",   "1 000", "1_000", "\u0663",
    "\uFF15", "\u00A05", "0x-1", "0x+1",   "0x 1", "0xG", "inf",   "nan",
};

} // namespace

TEST(NumberText, DigitsAreAWholeNumber)
{
    EXPECT_EQ(parseWholeNumber(text("0")), 0);
    EXPECT_EQ(parseWholeNumber(text("247")), 247);
    EXPECT_EQ(parseWholeNumber(text("007")), 7);
    EXPECT_EQ(parseWholeNumber(text("-1")), -1);
}

TEST(NumberText, ANumberThatIsTooLargeStaysOne)
{
    EXPECT_EQ(parseWholeNumber(text("2147483647")), std::numeric_limits<int>::max());
    EXPECT_EQ(parseWholeNumber(text("2147483648")), std::numeric_limits<int>::max());
    EXPECT_EQ(parseWholeNumber(text("99999999999999999999999999")),
              std::numeric_limits<int>::max());
    EXPECT_EQ(parseWholeNumber(text("-99999999999999999999999999")),
              -std::numeric_limits<int>::max());
}

TEST(NumberText, ARegisterValueIsDecimalOrHexadecimal)
{
    EXPECT_EQ(parseRegisterValue(text("16")), 16);
    EXPECT_EQ(parseRegisterValue(text("0x10")), 16);
    EXPECT_EQ(parseRegisterValue(text("0xaF")), 175);
    EXPECT_EQ(parseRegisterValue(text("65535")), 65535);
    EXPECT_EQ(parseRegisterValue(text("0xFFFF")), 65535);
    EXPECT_EQ(parseRegisterValue(text("0x0000FFFF")), 65535);
}

TEST(NumberText, ARegisterHasSixteenBits)
{
    EXPECT_EQ(parseRegisterValue(text("65536")), std::nullopt);
    EXPECT_EQ(parseRegisterValue(text("0x10000")), std::nullopt);
    EXPECT_EQ(parseRegisterValue(text("0x100000000000000010")), std::nullopt);
    EXPECT_EQ(parseRegisterValue(text("-1")), std::nullopt);
}

TEST(NumberText, ADecimalHasDigitsOnBothSidesOfItsPoint)
{
    EXPECT_EQ(parseDecimal(text("30")), 30.0);
    EXPECT_EQ(parseDecimal(text("30.00")), 30.0);
    EXPECT_EQ(parseDecimal(text("0.25")), 0.25);
    for (const char *other : { "30.", ".5", ".", "1.2.3", "-1", "1.-2", "1e3", "0x1.8" })
        EXPECT_EQ(parseDecimal(text(other)), std::nullopt) << other;
}

TEST(NumberText, WhatOnlyLooksLikeANumberIsNone)
{
    for (const char *other : nearlyNumbers) {
        EXPECT_EQ(parseWholeNumber(text(other)), std::nullopt) << other;
        EXPECT_EQ(parseRegisterValue(text(other)), std::nullopt) << other;
        EXPECT_EQ(parseDecimal(text(other)), std::nullopt) << other;
    }
}
