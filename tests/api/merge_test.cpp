// SPDX-License-Identifier: MIT
// Merging the host's addresses into cyclic reads, and the monitor marks that go with it.
#include "cycle_fixture.h"

namespace {

class Merging : public CycleFixture {
protected:
    Merging() { init("1#0#0#3#10"); }
};

} // namespace

TEST_F(Merging, JoinsNeighboursIntoOneBlock)
{
    const int blocks =
        merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 1, 1), keyAddress(1, "D", 2, 1) });

    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(text(state.readList), "1 D 0 3");
}

TEST_F(Merging, SplitsNeighboursAtTheBlockSize)
{
    init("1#0#0#3#2");

    const int blocks =
        merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 1, 1), keyAddress(1, "D", 2, 1) });

    EXPECT_EQ(blocks, 2);
    EXPECT_EQ(text(state.readList), "1 D 0 2; 1 D 2 1");
}

TEST_F(Merging, AllowsABlockAsLongAsTheBlockSize)
{
    merge({ keyAddress(1, "D", 0, 4), keyAddress(1, "D", 4, 6) });

    EXPECT_EQ(text(state.readList), "1 D 0 10");
}

TEST_F(Merging, StartsANewBlockOneRegisterPastTheBlockSize)
{
    merge({ keyAddress(1, "D", 0, 4), keyAddress(1, "D", 4, 7) });

    EXPECT_EQ(text(state.readList), "1 D 0 4; 1 D 4 7");
}

TEST_F(Merging, KeepsAnAddressLongerThanTheBlockSizeWhole)
{
    const int blocks = merge({ keyAddress(1, "D", 0, 25) });

    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(text(state.readList), "1 D 0 25");
}

TEST_F(Merging, StartsANewBlockAfterAGapOfOneRegister)
{
    const int blocks = merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 2, 1) });

    EXPECT_EQ(blocks, 2);
    EXPECT_EQ(text(state.readList), "1 D 0 1; 1 D 2 1");
}

TEST_F(Merging, NeverJoinsParametersOfDifferentGroups)
{
    merge({ keyAddress(1, "F", 0x0010, 1), keyAddress(1, "F", 0x0100, 1) });

    EXPECT_EQ(text(state.readList), "1 F 16 1; 1 F 256 1");
}

TEST_F(Merging, NeverJoinsTouchingParametersOfDifferentGroups)
{
    merge({ keyAddress(1, "F", 0x00FF, 1), keyAddress(1, "F", 0x0100, 1) });

    EXPECT_EQ(text(state.readList), "1 F 255 1; 1 F 256 1");
}

TEST_F(Merging, JoinsParametersOfOneGroup)
{
    init("1#0#0#3#3");

    merge({ keyAddress(1, "F", 0x0010, 2), keyAddress(1, "F", 0x0012, 1) });

    EXPECT_EQ(text(state.readList), "1 F 16 3");
}

TEST_F(Merging, SplitsParametersOfOneGroupAtTheBlockSize)
{
    init("1#0#0#3#2");

    merge({ keyAddress(1, "F", 0x0010, 2), keyAddress(1, "F", 0x0012, 1) });

    EXPECT_EQ(text(state.readList), "1 F 16 2; 1 F 18 1");
}

TEST_F(Merging, ComparesGroupsOfTheFirstRegistersOnly)
{
    merge({ keyAddress(1, "F", 0x00FE, 3), keyAddress(1, "F", 0x00FF, 4) });

    EXPECT_EQ(text(state.readList), "1 F 254 5");
}

TEST_F(Merging, NeverJoinsStatusWordAndFaultCode)
{
    const int blocks = merge({ keyAddress(1, "SW", 0, 1), keyAddress(1, "FU", 0, 1) });

    EXPECT_EQ(blocks, 2);
    EXPECT_EQ(text(state.readList), "1 SW 0 1; 1 FU 0 1");
}

TEST_F(Merging, AContainedAddressShortensItsBlock)
{
    merge({ keyAddress(1, "D", 0, 10), keyAddress(1, "D", 2, 1) });

    EXPECT_EQ(text(state.readList), "1 D 0 3");
}

TEST_F(Merging, AnAddressBehindAShortenedBlockStandsAlone)
{
    merge({ keyAddress(1, "D", 0, 10), keyAddress(1, "D", 2, 1), keyAddress(1, "D", 5, 1) });

    EXPECT_EQ(text(state.readList), "1 D 0 3; 1 D 5 1");
}

TEST_F(Merging, BlocksOfDifferentStationsMergeWhereTheyTouch)
{
    merge({ keyAddress(1, "D", 0, 2), keyAddress(2, "D", 2, 2) });

    EXPECT_EQ(text(state.readList), "1 D 0 4");
}

TEST_F(Merging, ALowerAddressOfTheNextStationGivesTheCountMinusOne)
{
    const int blocks = merge({ keyAddress(1, "D", 5, 1), keyAddress(2, "D", 3, 1) });

    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(text(state.readList), "1 D 5 -1");
}

TEST_F(Merging, RunsTheMergePassASecondTime)
{
    // The first pass shortens the second block to "5 2"; only the second pass can take that up.
    merge({ keyAddress(1, "D", 0, 10), keyAddress(1, "D", 5, 6), keyAddress(1, "D", 6, 1) });

    EXPECT_EQ(text(state.readList), "1 D 0 7");
}

TEST_F(Merging, RunsTheMergePassNoThirdTime)
{
    // After two passes "0 8" and "4 6" span exactly the block size, and are left apart.
    merge({ keyAddress(1, "D", 0, 8), keyAddress(1, "D", 4, 10), keyAddress(1, "D", 8, 7),
            keyAddress(1, "D", 9, 1) });

    EXPECT_EQ(text(state.readList), "1 D 0 8; 1 D 4 6");
}

TEST_F(Merging, SortsDescendingInputUpwards)
{
    merge({ keyAddress(1, "D", 9, 1), keyAddress(1, "D", 5, 1), keyAddress(1, "D", 1, 1) });

    EXPECT_EQ(text(state.readList), "1 D 1 1; 1 D 5 1; 1 D 9 1");
}

TEST_F(Merging, SortsByStationThenTypeThenAddress)
{
    merge({ keyAddress(2, "D", 0, 1), keyAddress(1, "FU", 0, 1), keyAddress(1, "FRE", 0, 1),
            keyAddress(1, "SW", 0, 1), keyAddress(1, "CW", 0, 1), keyAddress(1, "D", 30, 1),
            keyAddress(1, "F", 40, 1) });

    EXPECT_EQ(text(state.readList),
              "1 F 40 1; 1 D 30 1; 1 CW 0 1; 1 SW 0 1; 1 FRE 0 1; 1 FU 0 1; 2 D 0 1");
}

TEST_F(Merging, KeepsTheInputOrderOfEqualWeights)
{
    init("1#0#0#3#1");
    KEY_ADDRESS first = keyAddress(1, "D", 4, 3);
    first.hostTag = QStringLiteral("first");
    KEY_ADDRESS second = keyAddress(1, "D", 4, 2);
    second.hostTag = QStringLiteral("second");

    merge({ first, second });

    ASSERT_EQ(merged.size(), 2);
    EXPECT_EQ(merged.at(0).hostTag, QStringLiteral("first"));
    EXPECT_EQ(merged.at(1).hostTag, QStringLiteral("second"));
}

TEST_F(Merging, FaultCodesAndTheNextStationsParametersAreOrderedByAddressAlone)
{
    merge({ keyAddress(1, "FU", 300, 1), keyAddress(2, "F", 5, 1), keyAddress(1, "FU", 2, 1) });

    EXPECT_EQ(text(state.readList), "1 FU 2 1; 2 F 5 1; 1 FU 300 1");
}

TEST_F(Merging, AnUnknownTypeSharesTheBandOfTheFifthTypeOfTheStationBefore)
{
    merge({ keyAddress(1, "FRE", 300, 1), keyAddress(2, "X", 5, 1), keyAddress(1, "FRE", 2, 1) });

    EXPECT_EQ(text(state.readList), "1 FRE 2 1; 2 X 5 1; 1 FRE 300 1");
}

TEST_F(Merging, WeighsWith32BitWrapAround)
{
    // Band 65537, of D at station 13107, starts at 65535 * 65537 = 2^32 - 1; address 1 weighs 0.
    merge({ keyAddress(1, "D", 5, 1), keyAddress(13107, "D", 1, 1) });

    EXPECT_EQ(text(state.readList), "13107 D 1 1; 1 D 5 1");
}

TEST_F(Merging, SortsANegativeAddressBelowTheBandsStart)
{
    merge({ keyAddress(1, "D", 4, 1), keyAddress(1, "D", -9, 2) });

    EXPECT_EQ(text(state.readList), "1 D -9 2; 1 D 4 1");
}

TEST_F(Merging, WrapsAtTheHighestAddress)
{
    merge({ keyAddress(1, "D", 2147483647, 1), keyAddress(1, "D", 2147483647, 1) });

    EXPECT_EQ(text(state.readList), "1 D 2147483647 1");
}

TEST_F(Merging, GivesTheHostTheBlocksInTheirOrder)
{
    const int blocks =
        merge({ keyAddress(1, "D", 7, 1), keyAddress(1, "D", 1, 1), keyAddress(1, "D", 0, 1) });

    EXPECT_EQ(blocks, 2);
    EXPECT_EQ(text(merged), "1 D 0 2; 1 D 7 1");
}

TEST_F(Merging, CarriesTheHostFieldsOfTheFirstAddressOfTheBlock)
{
    KEY_ADDRESS first = keyAddress(1, "D", 0, 1, 4);
    first.hostTag = QStringLiteral("tag");
    first.hostWord1 = 11;
    first.hostWord2 = 22;
    first.hostText = QStringLiteral("text");
    first.data[3] = 0x5A;

    merge({ keyAddress(1, "D", 1, 1, 9), first });

    ASSERT_EQ(text(merged), "1 D 0 2");
    EXPECT_EQ(merged.at(0).hostTag, QStringLiteral("tag"));
    EXPECT_EQ(merged.at(0).hostWord1, 11);
    EXPECT_EQ(merged.at(0).hostWord2, 22);
    EXPECT_EQ(merged.at(0).hostText, QStringLiteral("text"));
    EXPECT_EQ(merged.at(0).subAddress, 4);
    EXPECT_EQ(merged.at(0).data[3], 0x5A);
}

TEST_F(Merging, MakesCyclicReadsOfKind4WithoutData)
{
    KEY_ADDRESS key = keyAddress(1, "D", 0, 1);
    key.data[0] = 0x77;

    merge({ key });

    ASSERT_EQ(state.readList.size(), 1);
    EXPECT_EQ(state.readList.at(0).varKind, 4);
    for (unsigned char byte : state.readList.at(0).data)
        ASSERT_EQ(byte, 0);
}

TEST_F(Merging, AnEmptyListReturnsZeroAndEndsPolling)
{
    merge({ keyAddress(1, "D", 0, 2) });

    const int blocks = merge({});

    EXPECT_EQ(blocks, 0);
    EXPECT_EQ(text(state.readList), "");
    EXPECT_EQ(record(1, "D", 0).flags, 0);
    EXPECT_EQ(record(1, "D", 1).flags, 0);
}

TEST_F(Merging, OneAddressReturnsOne)
{
    const int blocks = merge({ keyAddress(1, "FU", 0, 1) });

    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(text(state.readList), "1 FU 0 1");
}

TEST_F(Merging, ReplacesTheCyclicReadsOfThePreviousCall)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });

    const int blocks = merge({ keyAddress(1, "D", 9, 1) });

    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(text(state.readList), "1 D 9 1");
}

TEST_F(Merging, FillsNoMergeIndexes)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });

    EXPECT_TRUE(state.mergeIndexList.isEmpty());
}

TEST_F(Merging, MarksTheRegistersOfEveryAddressInInputOrder)
{
    merge({ keyAddress(1, "D", 10, 3), keyAddress(2, "SW", 0, 1), keyAddress(1, "D", 11, 1) });

    EXPECT_EQ(cacheKeys(), "1 D 10; 1 D 11; 1 D 12; 2 SW 0");
    for (const _DATA_ &data : std::as_const(state.dataAreas))
        EXPECT_EQ(data.flags, 1);
}

TEST_F(Merging, MarksRegistersThatTheBlockNoLongerReads)
{
    merge({ keyAddress(1, "D", 0, 4), keyAddress(1, "D", 1, 1) });

    EXPECT_EQ(text(state.readList), "1 D 0 2");
    EXPECT_EQ(record(1, "D", 2).flags, 1);
    EXPECT_EQ(record(1, "D", 3).flags, 1);
}

TEST_F(Merging, DropsTheMarksOfThePreviousConfiguration)
{
    merge({ keyAddress(1, "D", 0, 1) });
    record(1, "D", 0).flags = 7;
    record(1, "D", 0).bitMask = 0xFFFF;
    record(1, "D", 1).flags = 6;

    merge({ keyAddress(1, "D", 1, 1) });

    EXPECT_EQ(record(1, "D", 0).flags, 0);
    EXPECT_EQ(record(1, "D", 0).bitMask, 0);
    EXPECT_EQ(record(1, "D", 1).flags, 1);
}

TEST_F(Merging, KeepsTheValuesOfTheCache)
{
    set(1, "F", 3, { 0x1234 });

    merge({ keyAddress(1, "F", 3, 1) });

    EXPECT_EQ(data(1, "F", 3, 1), "34 12");
    EXPECT_EQ(cacheKeys(), "1 F 3");
}

TEST_F(Merging, ReadsAnUnknownTypeButMarksNothingForIt)
{
    const int blocks = merge({ keyAddress(1, "X", 0, 1) });

    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(text(state.readList), "1 X 0 1");
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Merging, ReadsCountsOfZeroAndBelowButMarksNothingForThem)
{
    const int blocks = merge({ keyAddress(1, "D", 3, 0), keyAddress(1, "F", 7, -2) });

    EXPECT_EQ(blocks, 2);
    EXPECT_EQ(text(state.readList), "1 F 7 -2; 1 D 3 0");
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Merging, TakesTheTypeOrderFromTheDriversList)
{
    state.regTypeList = { QStringLiteral("SW"), QStringLiteral("D") };

    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "SW", 0, 1), keyAddress(1, "F", 9, 1) });

    EXPECT_EQ(text(state.readList), "1 F 9 1; 1 SW 0 1; 1 D 0 1");
}

TEST_F(Merging, WithAnEmptyTypeListOrdersByStationAndAddress)
{
    state.regTypeList.clear();

    merge({ keyAddress(2, "D", 0, 1), keyAddress(1, "F", 9, 1), keyAddress(1, "D", 4, 1) });

    EXPECT_EQ(text(state.readList), "1 D 4 1; 1 F 9 1; 2 D 0 1");
}
