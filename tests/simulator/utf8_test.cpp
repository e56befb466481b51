// SPDX-License-Identifier: MIT
// Which bytes are characters, and what stands in for those that are not.
#include "simulator/utf8.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

// U+FFFD, and two and three of it.
const std::string one = "\xEF\xBF\xBD";
const std::string two = one + one;
const std::string three = two + one;

struct FormRow {
    const char *name;
    std::string text;
    std::string valid;
};

class Utf8Forms : public ::testing::TestWithParam<FormRow> { };

} // namespace

TEST_P(Utf8Forms, AreKeptOrReplacedByteByByte)
{
    const std::string valid = validUtf8("<" + GetParam().text + ">");

    EXPECT_EQ(valid, "<" + GetParam().valid + ">");
}

TEST_P(Utf8Forms, AreTheSameAtTheEndOfATextAndTwiceInARow)
{
    const std::string valid = validUtf8(GetParam().text + GetParam().text);

    EXPECT_EQ(valid, GetParam().valid + GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(
    Kept, Utf8Forms,
    ::testing::Values(FormRow { "Nothing", "", "" }, //
                      FormRow { "LastOfOneByte", "\x7F", "\x7F" },
                      FormRow { "FirstOfTwoBytes", "\xC2\x80", "\xC2\x80" },
                      FormRow { "LastOfTwoBytes", "\xDF\xBF", "\xDF\xBF" },
                      FormRow { "FirstOfThreeBytes", "\xE0\xA0\x80", "\xE0\xA0\x80" },
                      FormRow { "LastOfE0", "\xE0\xBF\xBF", "\xE0\xBF\xBF" },
                      FormRow { "FirstOfE1", "\xE1\x80\x80", "\xE1\x80\x80" },
                      FormRow { "LastOfEC", "\xEC\xBF\xBF", "\xEC\xBF\xBF" },
                      FormRow { "FirstOfED", "\xED\x80\x80", "\xED\x80\x80" },
                      FormRow { "LastBeforeTheHalvesOfPairs", "\xED\x9F\xBF", "\xED\x9F\xBF" },
                      FormRow { "FirstBehindTheHalvesOfPairs", "\xEE\x80\x80", "\xEE\x80\x80" },
                      FormRow { "LastOfEE", "\xEE\xBF\xBF", "\xEE\xBF\xBF" },
                      FormRow { "FirstOfEF", "\xEF\x80\x80", "\xEF\x80\x80" },
                      FormRow { "LastOfThreeBytes", "\xEF\xBF\xBF", "\xEF\xBF\xBF" },
                      FormRow { "FirstOfFourBytes", "\xF0\x90\x80\x80", "\xF0\x90\x80\x80" },
                      FormRow { "LastOfF0", "\xF0\xBF\xBF\xBF", "\xF0\xBF\xBF\xBF" },
                      FormRow { "FirstOfF1", "\xF1\x80\x80\x80", "\xF1\x80\x80\x80" },
                      FormRow { "LastOfF3", "\xF3\xBF\xBF\xBF", "\xF3\xBF\xBF\xBF" },
                      FormRow { "FirstOfF4", "\xF4\x80\x80\x80", "\xF4\x80\x80\x80" },
                      FormRow { "LastOfAll", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF" }),
    [](const ::testing::TestParamInfo<FormRow> &row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Replaced, Utf8Forms,
    ::testing::Values(FormRow { "FirstThatFollows", "\x80", one },
                      FormRow { "LastThatFollows", "\xBF", one },
                      FormRow { "OverlongOfTwoBytes", "\xC1\xBF", two },
                      FormRow { "SecondOfTwoTooLow", "\xC2\x7F", one + "\x7F" },
                      FormRow { "SecondOfTwoTooHigh", "\xDF\xC0", two },
                      FormRow { "OverlongOfThreeBytes", "\xE0\x9F\xBF", three },
                      FormRow { "SecondOfE0TooHigh", "\xE0\xC0\x80", three },
                      FormRow { "SecondOfE1TooLow", "\xE1\x7F\x80", one + "\x7F" + one },
                      FormRow { "SecondOfECTooHigh", "\xEC\xC0\x80", three },
                      FormRow { "SecondOfEDTooLow", "\xED\x7F\x80", one + "\x7F" + one },
                      FormRow { "FirstHalfOfAPair", "\xED\xA0\x80", three },
                      FormRow { "SecondOfEETooLow", "\xEE\x7F\x80", one + "\x7F" + one },
                      FormRow { "SecondOfEFTooHigh", "\xEF\xC0\x80", three },
                      FormRow { "ThirdTooLow", "\xE1\x80\x7F", two + "\x7F" },
                      FormRow { "ThirdTooHigh", "\xE1\x80\xC0", three },
                      FormRow { "ThirdIsMissing", "\xE1\x80", two },
                      FormRow { "OverlongOfFourBytes", "\xF0\x8F\xBF\xBF", three + one },
                      FormRow { "SecondOfF0TooHigh", "\xF0\xC0\x80\x80", three + one },
                      FormRow { "SecondOfF1TooLow", "\xF1\x7F\x80\x80", one + "\x7F" + two },
                      FormRow { "SecondOfF3TooHigh", "\xF3\xC0\x80\x80", three + one },
                      FormRow { "FourthTooLow", "\xF1\x80\x80\x7F", three + "\x7F" },
                      FormRow { "FourthIsMissing", "\xF1\x80\x80", three },
                      FormRow { "SecondOfF4TooLow", "\xF4\x7F\x80\x80", one + "\x7F" + two },
                      FormRow { "FirstBeyondAll", "\xF4\x90\x80\x80", three + one },
                      FormRow { "NeverAFirst", "\xF5\x80\x80\x80", three + one }),
    [](const ::testing::TestParamInfo<FormRow> &row) { return row.param.name; });
