// SPDX-License-Identifier: MIT
// "F" address text to internal address.
#include "registers/address_text.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct TextRow {
    const char *name;
    const char *text;
    int result;
    int address;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const TextRow &row, std::ostream *out)
{
    *out << row.name;
}

class AddressText : public ::testing::TestWithParam<TextRow> { };

TEST_P(AddressText, GivesTheResultAndThePackedAddress)
{
    const TextRow &row = GetParam();
    int address = -777;

    const int result = a2i_ddd_h_dd(QString::fromLatin1(row.text), address);

    EXPECT_EQ(result, row.result);
    EXPECT_EQ(address, row.address);
}

std::string rowName(const ::testing::TestParamInfo<TextRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Groups, AddressText,
    ::testing::Values(TextRow { "Group0IsNumber0", "0.1", 1, 1 },
                      TextRow { "Group1IsNumber1", "1.0", 1, 256 },
                      TextRow { "Group9IsNumber9", "9.11", 1, 2315 },
                      TextRow { "GroupCIsNumber10", "c.13", 1, 2573 },
                      TextRow { "CapitalCIsNumber10", "C.0", 1, 2560 },
                      TextRow { "GroupAIsNumber10", "a.01", 1, 2561 },
                      TextRow { "CapitalAIsNumber10", "A.01", 1, 2561 },
                      TextRow { "GroupBIsNumber11", "b.01", 1, 2817 },
                      TextRow { "GroupDIsNumber13", "d.05", 1, 3333 },
                      TextRow { "GroupEIsNumber14", "e.99", 1, 3683 },
                      TextRow { "GroupFIsNumber15", "F.0", 1, 3840 },
                      TextRow { "GroupIsHexadecimal", "10.5", 1, 4101 },
                      TextRow { "GroupMayHaveItsPrefix", "0x1.5", 1, 261 },
                      TextRow { "OnlyALoneCLosesTwo", "0c.1", 1, 3073 },
                      TextRow { "BlankBeforeCMakesItAnotherText", " c.1", 1, 3073 },
                      TextRow { "TwoLettersAreOneNumber", "cc.1", 1, 52225 },
                      TextRow { "NegativeGroupPacksBelowZero", "-1.5", 1, -251 },
                      TextRow { "LargestGroupWraps", "7fffffff.5", 1, -251 },
                      TextRow { "GroupAboveTheLargestIsGroup0", "80000000.5", 1, 5 },
                      TextRow { "TextThatIsNoGroupIsGroup0", "x.05", 1, 5 },
                      TextRow { "MissingGroupIsGroup0", ".5", 1, 5 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Indexes, AddressText,
    ::testing::Values(TextRow { "LeadingZeroesAreReadAlike", "1.00", 1, 256 },
                      TextRow { "IndexIsDecimal", "1.10", 1, 266 },
                      TextRow { "IndexMayPassOneByte", "0.300", 1, 300 },
                      TextRow { "BlanksAroundAreSkipped", "1. 5 ", 1, 261 },
                      TextRow { "PlusIsRead", "1.+5", 1, 261 },
                      TextRow { "MinusIsSubtracted", "1.-5", 1, 251 },
                      TextRow { "LetterIsRefused", "1.x", -1, 256 },
                      TextRow { "HexadecimalDigitIsRefused", "1.f", -1, 256 },
                      TextRow { "HexadecimalPrefixIsRefused", "1.0x5", -1, 256 },
                      TextRow { "MissingIndexIsRefused", "5.", -1, 1280 },
                      TextRow { "TooLargeAnIndexIsRefused", "1.2147483648", -1, 256 },
                      TextRow { "SumWrapsAt32Bits", "1.2147483647", 1, -2147483393 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Parts, AddressText,
    ::testing::Values(TextRow { "EmptyTextIsRefused", "", -1, 0 },
                      TextRow { "PointAloneIsRefused", ".", -1, 0 },
                      TextRow { "OnePartIsGroupAndIndexAndRefused", "5", -1, 1285 },
                      TextRow { "LoneCIsRefused", "c", -1, 2560 },
                      TextRow { "ThreePartsAreRefusedWithTheFirstAndTheLast", "1.2.3", -1, 259 },
                      TextRow { "TrailingPointIsAThirdPart", "1.2.", -1, 256 },
                      TextRow { "LeadingPointIsAThirdPart", ".1.2", -1, 2 }),
    rowName);

} // namespace
