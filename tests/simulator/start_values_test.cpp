// SPDX-License-Identifier: MIT
// Registers that are set before the first request.
#include "simulator/start_values.h"

#include "line_fixture.h"

using namespace dx4::sim;

namespace {

struct WrongRow {
    const char *name;
    const char *text;
    const char *error;
};

class StartingLine : public LineFixture {
protected:
    /// Sets the values of a text; gives what is wrong with it.
    std::string start(const std::string &text)
    {
        const StartValues values = parseStartValues(text, "v.txt");
        return values.good() ? setStartValues(values, bus) : values.error;
    }
};

/// A line for every parameter from this one on.
std::string dumpFrom(std::uint16_t first)
{
    std::string text;
    for (const Band &band : bands()) {
        for (unsigned i = 0; i < band.count; ++i) {
            const auto address = static_cast<std::uint16_t>(band.first + i);
            if (address >= first)
                text += registerName(address) + " = 100\n";
        }
    }
    return text;
}

class WrongStartValues : public StartingLine, public ::testing::WithParamInterface<WrongRow> { };

} // namespace

TEST_F(StartingLine, ParametersAreThoseOfTheDump)
{
    EXPECT_EQ(start("# F registers of one drive\nstation 2\nF 8.2 = 70\nF c.13 = 0x0102\n"), "");

    EXPECT_EQ(second.read(0xF802), 70);
    EXPECT_EQ(second.read(0xFC0D), 0x0102);
    EXPECT_EQ(inverter.read(0xF802), 50);
}

TEST_F(StartingLine, WhatComesBeforeAStationIsForAll)
{
    EXPECT_EQ(start("F 8.2 = 70 # a comment\r\n\nstation 1\nF8.2=80\n"), "");

    EXPECT_EQ(inverter.read(0xF802), 80);
    EXPECT_EQ(second.read(0xF802), 70);
}

TEST_F(StartingLine, MonitorsAndStatusShowWhatIsHeld)
{
    EXPECT_EQ(start("D 4 = 101\nSW = 3\nFU 0 = 2\n"), "");

    pass(1000);

    EXPECT_EQ(ask("01 03 D0 04 00 01"), framed("01 03 02 00 65"));
    EXPECT_EQ(inverter.read(0x2000), 3);
    EXPECT_EQ(inverter.read(0x2001), 2);
}

TEST_F(StartingLine, CommandsAreWritten)
{
    EXPECT_EQ(start("station 1\nFRE = 2500\nCW = 1\n"), "");

    pass(10000);

    EXPECT_EQ(inverter.read(0xD000), 2500);
}

TEST_F(StartingLine, RefusedRegistersAreNotThere)
{
    EXPECT_EQ(start("station 1\nF 8.3 refused\n"), "");

    EXPECT_EQ(ask("01 03 F8 03 00 01"), framed("01 83 02"));
    EXPECT_EQ(ask("01 03 F8 02 00 02"), framed("01 83 02"));
    EXPECT_EQ(ask("01 06 F8 03 00 01"), framed("01 86 02"));
    EXPECT_EQ(ask("01 10 F8 03 00 01 02 00 01"), framed("01 90 02"));
    EXPECT_EQ(ask("01 03 F8 02 00 01"), framed("01 03 02 00 32"));
    EXPECT_EQ(ask("02 03 F8 03 00 01"), framed("02 03 02 00 32"));
}

TEST_F(StartingLine, ACompleteSetHoldsEveryParameterOfItsStation)
{
    EXPECT_EQ(start("station 1\nD 4 = 101\n" + dumpFrom(0xF000) + "complete\n"), "");
    EXPECT_EQ(start("station 1\nD 4 = 101\n" + dumpFrom(0xF001) + "complete\n"),
              "v.txt:205: the set is said to be complete, but 1 of 203 registers are missing");
    EXPECT_EQ(start("station 1\n" + dumpFrom(0xF000) + "station 2\ncomplete\n"),
              "v.txt:206: the set is said to be complete, but 203 of 203 registers are missing");
}

TEST_F(StartingLine, BehindACompleteSetComesAnotherStation)
{
    const std::string complete = "station 1\n" + dumpFrom(0xF000) + "complete\n";

    EXPECT_EQ(start(complete + "station 2\nF 8.2 = 7\n"), "");
    EXPECT_EQ(second.read(0xF802), 7);
    EXPECT_EQ(start(complete + "D 4 = 101\n"),
              "v.txt:206: only \"station\" may follow \"complete\"");
}

TEST_F(StartingLine, OnlyNamesOfOneRegisterStandWithZero)
{
    EXPECT_EQ(start("SW 0 = 3\nD 0 = 5\n"), "");

    EXPECT_EQ(inverter.read(0x2000), 3);
    EXPECT_EQ(inverter.read(0xD000), 5);
}

TEST_P(WrongStartValues, NameFileAndLine)
{
    EXPECT_EQ(start(GetParam().text), std::string("v.txt:") + GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WrongStartValues,
    ::testing::Values(
        WrongRow { "NoLine", "# x\nfast\n",
                   "2: expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or \"station 1\"" },
        WrongRow { "NoValue", "F 8.2 =\n",
                   "1: expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or \"station 1\"" },
        WrongRow { "ValueAlone", "= 5\n",
                   "1: expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or \"station 1\"" },
        WrongRow { "RefusedAlone", "refused\n",
                   "1: expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or \"station 1\"" },
        WrongRow { "TooManyWords", "SW 0 0 = 1\n",
                   "1: expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or \"station 1\"" },
        WrongRow { "SecondStatusWord", "SW 5 = 1\n",
                   "1: no such register; expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or "
                   "\"station 1\"" },
        WrongRow { "NoRegister", "F 4.29 = 1\n",
                   "1: no such register; expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or "
                   "\"station 1\"" },
        WrongRow { "Negative", "F 8.2 = -1\n", "1: a value is 0 to 65535, or 0x0000 to 0xFFFF" },
        WrongRow { "TooLarge", "F 8.2 = 65536\n", "1: a value is 0 to 65535, or 0x0000 to 0xFFFF" },
        WrongRow { "OutsideTheLimits", "F 0.0 = 1\nF 8.4 = 481\n",
                   "2: 481 is outside the limits of F8.4, 100 to 480" },
        WrongRow { "Twice", "F 8.2 = 1\nF 8.2 = 1\n", "2: F8.2 stands here twice" },
        WrongRow { "StationZero", "station 0\n", "1: a station is a number from 1 to 247" },
        WrongRow { "StationBehindTheLast", "station 248\n",
                   "1: a station is a number from 1 to 247" },
        WrongRow { "LastStationNotServed", "station 247\nF 8.2 = 1\n",
                   "2: station 247 is not served; see --stations" },
        WrongRow { "StationNotServed", "station 7\nF 8.2 = 1\n",
                   "2: station 7 is not served; see --stations" },
        WrongRow { "CutInTheMiddle", "station 1\nF 8.2 = 1\ncomplete\n",
                   "3: the set is said to be complete, but 202 of 203 registers are missing" }),
    [](const auto &row) { return std::string(row.param.name); });
