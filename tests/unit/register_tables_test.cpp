// SPDX-License-Identifier: MIT
// The inverter's register map, row by row.
#include "register_tables.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(RegisterTables, NameTheSixTypesInOrder)
{
    EXPECT_EQ(REG_LIST[0].toStdString(), "F");
    EXPECT_EQ(REG_LIST[1].toStdString(), "D");
    EXPECT_EQ(REG_LIST[2].toStdString(), "CW");
    EXPECT_EQ(REG_LIST[3].toStdString(), "FRE");
    EXPECT_EQ(REG_LIST[4].toStdString(), "SW");
    EXPECT_EQ(REG_LIST[5].toStdString(), "FU");
    EXPECT_EQ(std::size(REG_LIST), 6U);
}

TEST(RegisterTables, DescribeEachTypeInTheOrderOfTheNames)
{
    const char *const expected[6][5] = {
        { "h.dd", "0.0", "c.28", "1", "1" }, // F
        { "dd", "0", "37", "1", "0" }, // D
        { "d", "0", "0", "1", "2" }, // CW
        { "d", "0", "0", "1", "2" }, // FRE
        { "d", "0", "0", "1", "0" }, // SW
        { "d", "0", "0", "1", "0" }, // FU
    };

    for (int row = 0; row < 6; ++row)
        for (int column = 0; column < 5; ++column)
            EXPECT_EQ(REG_DESCRIPTION[row][column].toStdString(), expected[row][column])
                << "row " << row << ", column " << column;
}

TEST(RegisterTables, PlaceEachTypeInTheRegisterSpace)
{
    EXPECT_EQ(REG_OFFSETADDR[0], 0xF000); // F
    EXPECT_EQ(REG_OFFSETADDR[1], 0xD000); // D
    EXPECT_EQ(REG_OFFSETADDR[2], 0x1001); // CW
    EXPECT_EQ(REG_OFFSETADDR[3], 0x1002); // FRE
    EXPECT_EQ(REG_OFFSETADDR[4], 0x2000); // SW
    EXPECT_EQ(REG_OFFSETADDR[5], 0x2001); // FU
    EXPECT_EQ(std::size(REG_OFFSETADDR), 6U);
}

TEST(RegisterTables, BoundEachParameterGroup)
{
    const int expected[11][2] = { { 0, 18 }, { 0, 18 }, { 0, 18 }, { 0, 16 }, { 0, 28 }, { 0, 26 },
                                  { 0, 19 }, { 0, 8 },  { 0, 17 }, { 0, 11 }, { 0, 13 } };

    for (int group = 0; group < 11; ++group) {
        EXPECT_EQ(REG_F_ADDRESS[group][0], expected[group][0]) << "group " << group;
        EXPECT_EQ(REG_F_ADDRESS[group][1], expected[group][1]) << "group " << group;
    }
    EXPECT_EQ(std::size(REG_F_ADDRESS), 11U);
}

TEST(RegisterTables, GiveEachParameterGroupItsCode)
{
    const int expected[11] = { 0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFC };

    for (int group = 0; group < 11; ++group)
        EXPECT_EQ(REG_F_OFFSETADDR[group], expected[group]) << "group " << group;
    EXPECT_EQ(std::size(REG_F_OFFSETADDR), 11U);
}

TEST(RegisterTables, PutTheGroupCodesRightBehindTheTypeBases)
{
    const char *const bases = reinterpret_cast<const char *>(REG_OFFSETADDR);
    const char *const codes = reinterpret_cast<const char *>(REG_F_OFFSETADDR);

    EXPECT_EQ(codes - bases, 24);
}

TEST(RegisterTables, ReachAGroupCodeAtPosition6PlusItsNumber)
{
    int words[17];

    std::memcpy(words, &dx4::registerOffsets, sizeof words);

    EXPECT_EQ(words[6 + 0], 0xF0);
    EXPECT_EQ(words[6 + 9], 0xF9);
    EXPECT_EQ(words[6 + 10], 0xFC);
}

} // namespace
