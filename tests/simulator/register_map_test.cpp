// SPDX-License-Identifier: MIT
// Names of registers, both ways.
#include "simulator/register_map.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

struct NameRow {
    const char *name; // of the case
    const char *text;
    std::optional<std::uint16_t> address;
};

class RegisterNames : public ::testing::TestWithParam<NameRow> { };

} // namespace

TEST_P(RegisterNames, AreReadAsTheirAddress)
{
    EXPECT_EQ(registerByName(GetParam().text), GetParam().address);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RegisterNames,
    ::testing::Values(
        NameRow { "FirstParameter", "F0.0", 0xF000 }, NameRow { "LastOfGroup4", "F4.28", 0xF41C },
        NameRow { "BehindGroup4", "F4.29", std::nullopt }, NameRow { "GroupC", "Fc.13", 0xFC0D },
        NameRow { "LowerCase", "fC.1", 0xFC01 }, NameRow { "GroupA", "Fa.0", std::nullopt },
        NameRow { "NoIndex", "F4.", std::nullopt }, NameRow { "NoGroup", "F.4", std::nullopt },
        NameRow { "NoGroupAndNoIndex", "F.", std::nullopt },
        NameRow { "GroupOfTwoDigits", "F12.3", std::nullopt },
        NameRow { "GroupOfNoDigit", "Fg.1", std::nullopt },
        NameRow { "IndexOfTheNextGroup", "F0.256", std::nullopt },
        NameRow { "ParameterWithoutPoint", "F5", std::nullopt },
        NameRow { "PointAlone", "4.5", std::nullopt },
        NameRow { "MonitorWithAPoint", "D1.5", std::nullopt },
        NameRow { "MonitorAlone", "D", std::nullopt }, NameRow { "Monitor", "D37", 0xD025 },
        NameRow { "BehindMonitors", "D38", std::nullopt }, NameRow { "ControlWord", "cw", 0x1001 },
        NameRow { "SetFrequency", "FRE", 0x1002 }, NameRow { "StatusWord", "SW", 0x2000 },
        NameRow { "FaultCode", "FU", 0x2001 }, NameRow { "Hexadecimal", "0xd000", 0xD000 },
        NameRow { "Decimal", "53248", 0xD000 }, NameRow { "NumberOfNoRegister", "7", std::nullopt },
        NameRow { "LeadingZeroIsNotOctal", "053248", 0xD000 },
        NameRow { "TwoPrefixes", "0x0xD000", std::nullopt },
        NameRow { "HexadecimalIndex", "D0x5", std::nullopt },
        NameRow { "BlankInside", "D 5", std::nullopt },
        NameRow { "TooLarge", "99999", std::nullopt }, NameRow { "Sign", "D-1", std::nullopt },
        NameRow { "Empty", "", std::nullopt }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(RegisterNamesBack, OfEveryRegisterGiveTheSameRegister)
{
    int registers = 0;
    for (const Band &band : bands()) {
        for (unsigned i = 0; i < band.count; ++i) {
            const auto address = static_cast<std::uint16_t>(band.first + i);
            EXPECT_EQ(registerByName(registerName(address)), address);
            ++registers;
        }
    }

    EXPECT_EQ(registers, 245); // 203 parameters, 38 monitor values, 4 others
}

TEST(RegisterNamesBack, OfAMissingRegisterIsItsNumber)
{
    EXPECT_EQ(registerName(0x0007), "0x0007");
}
