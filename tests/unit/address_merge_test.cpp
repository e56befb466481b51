// SPDX-License-Identifier: MIT
// Weights, the joining test and the index-recording mode of merging.
#include "korvane_dx4/address_merge.h"

#include "driver_state.h"

namespace {

struct Weight {
    const char *name;
    int station;
    const char *type;
    int address;
    unsigned expected;
};

class AddressWeight : public DriverState, public ::testing::WithParamInterface<Weight> { };
class AddressWeights : public DriverState { };

struct Pair {
    const char *name;
    KEY_ADDRESS a;
    KEY_ADDRESS b;
    int expected;
};

class TheMerge : public DriverState, public ::testing::WithParamInterface<Pair> { };

class MergeIndexes : public DriverState {
protected:
    MergeIndexes() { driver.blockSize = 10; }
};

} // namespace

TEST_P(AddressWeight, IsTheBandTimes65535PlusTheAddress)
{
    const QString type = QString::fromLatin1(GetParam().type);

    EXPECT_EQ(getRegAddressWeight(GetParam().station, type, GetParam().address, 0),
              GetParam().expected);
    EXPECT_EQ(getRegAddressWeight(GetParam().station, type, GetParam().address, -7),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AddressWeight,
    ::testing::Values(Weight { "FOfStation1", 1, "F", 0, 393210U },
                      Weight { "DOfStation1", 1, "D", 3, 458748U },
                      Weight { "CwOfStation1", 1, "CW", 0, 524280U },
                      Weight { "SwOfStation1", 1, "SW", 0, 589815U },
                      Weight { "FreOfStation1", 1, "FRE", 0, 655350U },
                      Weight { "FuOfStation1", 1, "FU", 0, 720885U },
                      Weight { "FOfStation2SharesTheBand", 2, "F", 0, 720885U },
                      Weight { "UnknownOfStation2SharesTheBandOfFre", 2, "X", 0, 655350U },
                      Weight { "UnknownOfStation0", 0, "X", 5, 5U },
                      Weight { "LowerCaseIsUnknown", 0, "f", 5, 5U },
                      Weight { "NegativeAddressWraps", 0, "X", -1, 4294967295U },
                      Weight { "NegativeStationWraps", -1, "X", 0, 4294639621U },
                      Weight { "TheLastBeforeTheWrap", 13107, "D", 0, 4294967295U },
                      Weight { "TheFirstBehindTheWrap", 13107, "D", 1, 0U }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(AddressWeights, UseTheFirstOfEqualTypeNames)
{
    driver.regTypeList = { QStringLiteral("D"), QStringLiteral("F"), QStringLiteral("D") };

    EXPECT_EQ(getRegAddressWeight(0, QStringLiteral("D"), 0, 0), 65535U);
    EXPECT_EQ(getRegAddressWeight(0, QStringLiteral("F"), 0, 0), 131070U);
}

TEST_F(AddressWeights, WithoutTypesTakeTheStationAlone)
{
    driver.regTypeList.clear();

    EXPECT_EQ(getRegAddressWeight(2, QStringLiteral("F"), 7, 0), 655357U);
}

TEST_P(TheMerge, DecidesWhetherTheSecondJoinsTheFirst)
{
    KEY_ADDRESS a = GetParam().a;
    KEY_ADDRESS b = GetParam().b;

    EXPECT_EQ(the_Merge(a, b), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TheMerge,
    ::testing::Values(
        Pair { "Touching", keyOf(1, "D", 0, 1), keyOf(1, "D", 1, 1), 0 },
        Pair { "GapOfOne", keyOf(1, "D", 0, 1), keyOf(1, "D", 2, 1), 1 },
        Pair { "Overlapping", keyOf(1, "D", 0, 4), keyOf(1, "D", 2, 4), 0 },
        Pair { "Contained", keyOf(1, "D", 0, 10), keyOf(1, "D", 2, 1), 0 },
        Pair { "Before", keyOf(1, "D", 5, 1), keyOf(1, "D", 3, 1), 0 },
        Pair { "AnotherStation", keyOf(1, "D", 0, 1), keyOf(2, "D", 1, 1), 0 },
        Pair { "AnotherType", keyOf(1, "SW", 0, 1), keyOf(1, "FU", 0, 1), 1 },
        Pair { "CaseOfTheType", keyOf(1, "D", 0, 1), keyOf(1, "d", 1, 1), 1 },
        Pair { "UnknownTypes", keyOf(1, "X", 0, 1), keyOf(1, "X", 1, 1), 0 },
        Pair { "SameGroup", keyOf(1, "F", 0x0010, 2), keyOf(1, "F", 0x0012, 1), 0 },
        Pair { "NextGroupTouching", keyOf(1, "F", 0x00FF, 1), keyOf(1, "F", 0x0100, 1), 1 },
        Pair { "GroupBeforeOverlapping", keyOf(1, "F", 0x0100, 1), keyOf(1, "F", 0x0010, 1), 1 },
        Pair { "GroupsTruncateTowardZero", keyOf(1, "F", -1, 1), keyOf(1, "F", 0, 1), 0 },
        Pair { "NegativeGroup", keyOf(1, "F", -256, 256), keyOf(1, "F", 0, 1), 1 },
        Pair { "GroupsOfOtherTypesDoNotCount", keyOf(1, "D", 0x00FF, 1), keyOf(1, "D", 0x0100, 1),
               0 },
        Pair { "EndWraps", keyOf(1, "D", 2147483647, 1), keyOf(1, "D", 2147483647, 1), 0 }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(MergeIndexes, AreRecordedInMode2)
{
    QList<KEY_ADDRESS> list { keyOf(1, "D", 0, 1), keyOf(1, "D", 1, 1), keyOf(1, "D", 5, 1),
                              keyOf(1, "SW", 0, 1) };

    addrMerge(list, 2);

    EXPECT_EQ(listText(list), "1 D 0 2; 1 D 5 1; 1 SW 0 1");
    EXPECT_EQ(driver.mergeIndexList, (QList<int> { 0, 2, 3 }));
}

TEST_F(MergeIndexes, AreRecordedAtTheBlockSizeToo)
{
    driver.blockSize = 2;
    QList<KEY_ADDRESS> list { keyOf(1, "D", 0, 1), keyOf(1, "D", 1, 1), keyOf(1, "D", 2, 1) };

    addrMerge(list, 2);

    EXPECT_EQ(listText(list), "1 D 0 2; 1 D 2 1");
    EXPECT_EQ(driver.mergeIndexList, (QList<int> { 0, 2 }));
}

TEST_F(MergeIndexes, OfASingleAddressAreZero)
{
    QList<KEY_ADDRESS> list { keyOf(1, "D", 7, 3) };

    addrMerge(list, 2);

    EXPECT_EQ(listText(list), "1 D 7 3");
    EXPECT_EQ(driver.mergeIndexList, (QList<int> { 0 }));
}

TEST_F(MergeIndexes, AreAppendedToThoseThatStand)
{
    driver.mergeIndexList = { 9 };
    QList<KEY_ADDRESS> list { keyOf(1, "D", 7, 3), keyOf(1, "D", 20, 1) };

    addrMerge(list, 2);

    EXPECT_EQ(driver.mergeIndexList, (QList<int> { 9, 0, 1 }));
}

TEST_F(MergeIndexes, Mode2DoesNotSort)
{
    QList<KEY_ADDRESS> list { keyOf(1, "D", 9, 1), keyOf(2, "SW", 0, 1), keyOf(1, "D", 0, 1) };

    addrMerge(list, 2);

    EXPECT_EQ(listText(list), "1 D 9 1; 2 SW 0 1; 1 D 0 1");
    EXPECT_EQ(driver.mergeIndexList, (QList<int> { 0, 1, 2 }));
}

TEST_F(MergeIndexes, Mode2RunsOnePassOnly)
{
    QList<KEY_ADDRESS> list { keyOf(1, "D", 0, 10), keyOf(1, "D", 5, 6), keyOf(1, "D", 6, 1) };

    addrMerge(list, 2);

    EXPECT_EQ(listText(list), "1 D 0 10; 1 D 5 2");
    EXPECT_EQ(driver.mergeIndexList, (QList<int> { 0, 1 }));
}

TEST_F(MergeIndexes, Mode1RunsTwoPassesAndRecordsNone)
{
    QList<KEY_ADDRESS> list { keyOf(1, "D", 6, 1), keyOf(1, "D", 5, 6), keyOf(1, "D", 0, 10) };

    addrMerge(list, 1);

    EXPECT_EQ(listText(list), "1 D 0 7");
    EXPECT_TRUE(driver.mergeIndexList.isEmpty());
}

TEST_F(MergeIndexes, AnyOtherModeWorksLikeMode1)
{
    QList<KEY_ADDRESS> list { keyOf(1, "D", 6, 1), keyOf(1, "D", 5, 6), keyOf(1, "D", 0, 10) };

    addrMerge(list, 0);

    EXPECT_EQ(listText(list), "1 D 0 7");
    EXPECT_TRUE(driver.mergeIndexList.isEmpty());
}
