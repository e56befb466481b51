// SPDX-License-Identifier: MIT
// Stations as a user types them.
#include "simulator/station_list.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

struct WrongRow {
    const char *name;
    const char *text;
    const char *error;
};

class WrongStations : public ::testing::TestWithParam<WrongRow> { };

} // namespace

TEST(StationList, IsReadInItsOrder)
{
    EXPECT_EQ(parseStations("1").stations, (std::vector<int> { 1 }));
    EXPECT_EQ(parseStations("5,1,247").stations, (std::vector<int> { 5, 1, 247 }));
    EXPECT_EQ(parseStations("1,3-5").stations, (std::vector<int> { 1, 3, 4, 5 }));
    EXPECT_EQ(parseStations("7-7").stations, (std::vector<int> { 7 }));
}

TEST(StationList, RunMayHoldTheWholeLine)
{
    const StationList list = parseStations("1-247");

    EXPECT_EQ(list.error, "");
    EXPECT_EQ(list.stations.size(), 247U);
    EXPECT_EQ(list.stations.back(), 247);
}

TEST_P(WrongStations, AreRefusedWithWhatWouldBeRight)
{
    EXPECT_EQ(parseStations(GetParam().text).error, GetParam().error);
    EXPECT_TRUE(parseStations(GetParam().text).stations.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WrongStations,
    ::testing::Values(
        WrongRow { "Empty", "", "\"\" is no station; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "CommaAtTheEnd", "1,",
                   "\"\" is no station; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "CommaAtTheBegin", ",1",
                   "\"\" is no station; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "Zero", "0", "\"0\" is out of range; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "BehindTheLast", "248",
                   "\"248\" is out of range; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "Negative", "-1",
                   "\"-1\" is out of range; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "HugeEnd", "1-9999999999999999999999",
                   "\"1-9999999999999999999999\" is out of range; stations are 1 to 247, such as "
                   "1,3-5" },
        WrongRow { "OpenRun", "3-", "\"3-\" is no station; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "Hexadecimal", "0x10",
                   "\"0x10\" is no station; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "Blank", "1, 2", "\" 2\" is no station; stations are 1 to 247, such as 1,3-5" },
        WrongRow { "Backwards", "5-3", "\"5-3\" ends before it begins" },
        WrongRow { "Twice", "1,2,1", "1 stands there twice" },
        WrongRow { "TwiceInARun", "4,3-5", "4 stands there twice" }),
    [](const auto &row) { return std::string(row.param.name); });
