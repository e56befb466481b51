// SPDX-License-Identifier: MIT
// Runs of registers as users type them, and what the driver says of addresses in words.
#include "host/link/address_range.h"
#include "host/link/address_verdict.h"

#include "result_codes.h"

#include <gtest/gtest.h>

#include <string>

using namespace dx4::host;

namespace {

/// "type, first address, count", or what is wrong.
std::string parsed(const char *text)
{
    QString error;
    const auto range = parseRange(QString::fromLatin1(text), &error);
    return range ? range->regType.toStdString() + ", " + range->firstText.toStdString() + ", "
            + std::to_string(range->count)
                 : error.toStdString();
}

struct RangeRow {
    const char *name;
    const char *text;
    const char *parsed;
};

class AddressRangeTest : public ::testing::TestWithParam<RangeRow> { };

std::string verdict(int code, const char *regType, int address = 0)
{
    return addressVerdictText(code, QString::fromLatin1(regType), address).toStdString();
}

} // namespace

TEST_P(AddressRangeTest, IsTakenApartOrRefusedWithWhatWouldBeRight)
{
    EXPECT_EQ(parsed(GetParam().text), GetParam().parsed);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AddressRangeTest,
    ::testing::Values(
        RangeRow { "OneParameter", "F 8.2", "F, 8.2, 1" },
        RangeRow { "ParametersWithBothGroups", "F 8.2-8.5", "F, 8.2, 4" },
        RangeRow { "ParametersWithOneGroup", "F 8.2-5", "F, 8.2, 4" },
        RangeRow { "GroupCInEitherCase", "F C.0 - c.13", "F, c.0, 14" },
        RangeRow { "LeadingZerosAndBlanks", "  F   1.07-1.08 ", "F, 1.7, 2" },
        RangeRow { "Monitors", "D 0-9", "D, 0, 10" }, RangeRow { "OneMonitor", "D 4", "D, 4, 1" },
        RangeRow { "ASingleRegister", "SW", "SW, 0, 1" },
        RangeRow { "ASingleRegisterWithItsAddress", "SW 0", "SW, 0, 1" },
        RangeRow { "ASingleRegisterWithAnotherAddress", "FU 1", "FU, 1, 1" },
        RangeRow { "NoParameter", "F",
                   "not an address; write \"F 8.2\" or \"F 8.2-8.5\", with groups 0 to 9 and c" },
        RangeRow { "AParameterWithoutGroup", "F 8",
                   "not an address; write \"F 8.2\" or \"F 8.2-8.5\", with groups 0 to 9 and c" },
        RangeRow { "NoMonitor", "D", "not an address; write \"D 4\" or \"D 0-9\"" },
        RangeRow { "AMonitorWithAGroup", "D 1.2", "not an address; write \"D 4\" or \"D 0-9\"" },
        RangeRow { "ASingleRegisterWithAWord", "SW x", "not an address; write \"SW\"" },
        RangeRow { "TwoGroups", "F 8.2-9.5", "a run of parameters stays within one group" },
        RangeRow { "Backwards", "D 5-4", "the run ends before it begins" },
        RangeRow { "ARunOfOne", "D 5-5", "D, 5, 1" },
        RangeRow { "AnotherType", "f 8.2",
                   "no register type \"f\"; types are F, D, CW, FRE, SW, FU" },
        RangeRow { "Nothing", "", "no register type \"\"; types are F, D, CW, FRE, SW, FU" }),
    [](const auto &tested) { return std::string(tested.param.name); });

TEST(AddressRange, NobodyNeedsToAskWhatIsWrong)
{
    EXPECT_FALSE(parseRange(QStringLiteral("X 1"), nullptr));
}

TEST(AddressVerdict, SaysHowFarATypeOrItsGroupReaches)
{
    EXPECT_EQ(verdict(dx4::AddressOutOfRange, "D", 32),
              "D 32 (0xD020) is out of range; D reaches from 0 to 31 (0xD01F)");
    EXPECT_EQ(verdict(dx4::AddressOutOfRange, "SW", 1),
              "SW 1 (0x2001) is out of range; SW has address 0 alone");
    EXPECT_EQ(verdict(dx4::AddressOutOfRange, "F", 0),
              "F 0.0 (0xF000) is out of range; the group reaches from F 0.0 (0xF000) to F 0.18 "
              "(0xF012)");
    EXPECT_EQ(verdict(dx4::AddressOutOfRange, "F", 0x00FF),
              "F 0.255 (0xF0FF) is out of range; the group reaches from F 0.0 (0xF000) to F 0.18 "
              "(0xF012)");
    EXPECT_EQ(verdict(dx4::AddressOutOfRange, "F", 0x0A0E),
              "F c.14 (0xFC0E) is out of range; the group reaches from F c.0 (0xFC00) to F c.13 "
              "(0xFC0D)");
}

TEST(AddressVerdict, OfAGroupThatIsNoneNamesTheGroups)
{
    EXPECT_EQ(verdict(dx4::AddressOutOfRange, "F", 0x0B00),
              "no such group; groups are 0 to 9 and c");
    EXPECT_EQ(verdict(dx4::AddressOutOfRange, "F", -1), "no such group; groups are 0 to 9 and c");
    EXPECT_EQ(verdict(dx4::AddressTypeUnknown, "F"), "no such group; groups are 0 to 9 and c");
}

TEST(AddressVerdict, NamesTheTypesThatAreOffered)
{
    EXPECT_EQ(verdict(dx4::AddressTypeUnknown, "X"),
              "no register type \"X\"; types are F, D, CW, FRE, SW, FU");
    EXPECT_EQ(verdict(dx4::AddressReadOnly, "SW"),
              "SW can only be read; F, CW and FRE can be written");
    EXPECT_EQ(verdict(dx4::AddressWriteOnly, "FRE"),
              "FRE can only be written; F, D, SW and FU can be read");
}

TEST(AddressVerdict, SaysWhatIsWrongWithAText)
{
    EXPECT_EQ(verdict(dx4::AddressAccepted, "F", 0x0105), "F 1.5 (0xF105) is acceptable");
    EXPECT_EQ(verdict(dx4::AddressNotOffered, "D"), "D is not offered");
    EXPECT_EQ(verdict(dx4::AddressTooLong, "D"), "the address has too many characters");
    EXPECT_EQ(verdict(dx4::AddressMalformed, "D"), "not an address of type D");
}
