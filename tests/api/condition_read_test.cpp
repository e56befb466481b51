// SPDX-License-Identifier: MIT
// One-off reads: cut into pieces, folded together, bounded.
#include "cycle_fixture.h"

namespace {

class ConditionReads : public CycleFixture {
protected:
    ConditionReads() { init("1#0#0#3#10"); }

    /// Fills the list with this many distinct reads "1 D 1000+i 1".
    void fill(int entries)
    {
        for (int i = 0; i < entries; ++i)
            state.conditionList.append(variable(1, "D", 1000 + i, 1));
    }
};

struct Split {
    const char *name;
    const char *property;
    int subAddress;
    int address;
    int count;
    const char *expected;
};

class ConditionReadSplits : public CycleFixture, public ::testing::WithParamInterface<Split> { };

} // namespace

TEST_P(ConditionReadSplits, QueuesThePieces)
{
    init(GetParam().property);

    const int result =
        readOnce(1, "D", GetParam().address, GetParam().count, GetParam().subAddress);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(text(state.conditionList), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ConditionReadSplits,
    ::testing::Values(
        Split { "OneBelowTheLimit", "1#0#0#3#10", 0, 3, 9, "1 D 3 9" },
        Split { "TheLimit", "1#0#0#3#10", 0, 3, 10, "1 D 3 10" },
        Split { "OneAboveTheLimit", "1#0#0#3#10", 0, 3, 11, "1 D 3 10; 1 D 13 1" },
        Split { "TwoFullPieces", "1#0#0#3#10", 0, 0, 20, "1 D 0 10; 1 D 10 10" },
        Split { "TwoFullPiecesAndARest", "1#0#0#3#10", 0, 0, 25, "1 D 0 10; 1 D 10 10; 1 D 20 5" },
        Split { "AnyOtherSubAddress", "1#0#0#3#10", 7, 0, 11, "1 D 0 10; 1 D 10 1" },
        Split { "SubAddressMinusTwo", "1#0#0#3#10", -2, 0, 11, "1 D 0 10; 1 D 10 1" },
        Split { "WholeRegistersUpToEightBlocks", "1#0#0#3#10", -1, 0, 80, "1 D 0 80" },
        Split { "WholeRegistersPastEightBlocks", "1#0#0#3#10", -1, 0, 100, "1 D 0 80; 1 D 80 20" },
        Split { "CountZero", "1#0#0#3#10", 0, 4, 0, "1 D 4 0" },
        Split { "CountBelowZero", "1#0#0#3#10", 0, 4, -5, "1 D 4 -5" },
        Split { "LimitZeroCountsAsOne", "1#0#0#3#0", 0, 4, 3, "1 D 4 1; 1 D 5 1; 1 D 6 1" },
        Split { "LimitZeroOfWholeRegistersCountsAsOne", "1#0#0#3#0", -1, 4, 2, "1 D 4 1; 1 D 5 1" },
        Split { "LimitBelowZeroWithALongerCount", "1#0#0#3#-2", 0, 4, 5, "" },
        Split { "LimitBelowZeroWithAShorterCount", "1#0#0#3#-2", 0, 4, 1, "1 D 4 1" },
        Split { "LimitBelowZeroWithCountZero", "1#0#0#3#-2", 0, 4, 0, "" },
        Split { "LimitBelowZeroWithTheSameCount", "1#0#0#3#-2", 0, 4, -2, "1 D 4 -2" },
        Split { "LimitMinusOneWithTheLowestCount", "1#0#0#3#-1", 0, 4, -2147483647 - 1,
                "1 D 4 -2147483648" },
        Split { "AddressesWrap", "1#0#0#3#10", 0, 2147483640, 15,
                "1 D 2147483640 10; 1 D -2147483646 5" }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(ConditionReads, CarryTheHostsKindAndNoData)
{
    KEY_ADDRESS key = keyAddress(6, "FU", 1, 1);
    key.data[0] = 0x99;

    dx4.addConditionRead(key, 42);

    ASSERT_EQ(text(state.conditionList), "6 FU 1 1");
    EXPECT_EQ(state.conditionList.at(0).varKind, 42);
    for (unsigned char byte : state.conditionList.at(0).data)
        ASSERT_EQ(byte, 0);
}

TEST_F(ConditionReads, TakeUnknownTypesToo)
{
    readOnce(1, "X", 3, 1);

    EXPECT_EQ(nextFrame(), "01 03 D0 03 00 01 4C CA");
}

TEST_F(ConditionReads, AreServedInTheOrderOfRequest)
{
    readOnce(1, "D", 9, 1);
    readOnce(1, "D", 2, 1);

    EXPECT_EQ(serve(), "3 1 D 9 1");
    EXPECT_EQ(serve(), "3 1 D 2 1");
}

TEST_F(ConditionReads, ARepetitionBehindTheHeadReplacesTheWaitingOne)
{
    readOnce(1, "D", 0, 1);
    readOnce(1, "D", 5, 1, 0, 1);
    readOnce(1, "D", 9, 1);

    readOnce(1, "D", 5, 1, 0, 2);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 5 1; 1 D 9 1");
    EXPECT_EQ(state.conditionList.at(1).varKind, 2);
}

TEST_F(ConditionReads, ARepetitionOfTheHeadAloneIsQueuedTwice)
{
    readOnce(1, "D", 0, 1, 0, 1);

    readOnce(1, "D", 0, 1, 0, 2);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 0 1");
    EXPECT_EQ(state.conditionList.at(0).varKind, 1);
    EXPECT_EQ(state.conditionList.at(1).varKind, 2);
}

TEST_F(ConditionReads, AThirdRequestReplacesTheSecondOfTheHead)
{
    readOnce(1, "D", 0, 1, 0, 1);
    readOnce(1, "D", 0, 1, 0, 2);

    readOnce(1, "D", 0, 1, 0, 3);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 0 1");
    EXPECT_EQ(state.conditionList.at(1).varKind, 3);
}

TEST_F(ConditionReads, ReplaceTheLastOfSeveralEqualOnes)
{
    state.conditionList = { variable(1, "D", 0, 1), variable(1, "D", 5, 1, 1),
                            variable(1, "D", 5, 1, 2), variable(1, "D", 6, 1) };

    readOnce(1, "D", 5, 1, 0, 9);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 5 1; 1 D 5 1; 1 D 6 1");
    EXPECT_EQ(state.conditionList.at(1).varKind, 1);
    EXPECT_EQ(state.conditionList.at(2).varKind, 9);
}

TEST_F(ConditionReads, AreDifferentWhenAnyPartOfTheKeyDiffers)
{
    readOnce(1, "D", 0, 1);
    readOnce(1, "D", 5, 1);

    readOnce(2, "D", 5, 1);
    readOnce(1, "F", 5, 1);
    readOnce(1, "D", 6, 1);
    readOnce(1, "D", 5, 2);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 5 1; 2 D 5 1; 1 F 5 1; 1 D 6 1; 1 D 5 2");
}

TEST_F(ConditionReads, EachPieceIsFoldedByItself)
{
    readOnce(1, "D", 0, 1);
    readOnce(1, "D", 10, 10, 0, 1);

    readOnce(1, "D", 0, 20, 0, 2);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 10 10; 1 D 0 10");
    EXPECT_EQ(state.conditionList.at(1).varKind, 2);
}

TEST_F(ConditionReads, RememberTheLastPiece)
{
    readOnce(1, "D", 0, 25, 0, 7);

    EXPECT_EQ(text(state.conditionVar), "1 D 20 5");
    EXPECT_EQ(state.conditionVar.varKind, 7);
}

TEST_F(ConditionReads, RememberARequestThatReplacedAnother)
{
    readOnce(1, "D", 0, 1);
    readOnce(1, "D", 5, 1);
    readOnce(1, "D", 9, 1);

    readOnce(1, "D", 5, 1, 0, 3);

    EXPECT_EQ(text(state.conditionVar), "1 D 5 1");
    EXPECT_EQ(state.conditionVar.varKind, 3);
}

TEST_F(ConditionReads, With512EntriesANewOneIsAppended)
{
    fill(512);

    readOnce(1, "D", 5, 1);

    EXPECT_EQ(state.conditionList.size(), 513);
    EXPECT_EQ(text(state.conditionList.last()), "1 D 5 1");
    EXPECT_EQ(text(state.conditionList.at(511)), "1 D 1511 1");
}

TEST_F(ConditionReads, With513EntriesANewOneOverwritesEntry512)
{
    fill(513);

    readOnce(1, "D", 5, 1);

    EXPECT_EQ(state.conditionList.size(), 513);
    EXPECT_EQ(text(state.conditionList.at(512)), "1 D 5 1");
    EXPECT_EQ(text(state.conditionList.at(511)), "1 D 1511 1");
    EXPECT_EQ(text(state.conditionVar), "1 D 5 1");
}

TEST_F(ConditionReads, TheListNeverGrowsPast513Entries)
{
    for (int i = 0; i < 600; ++i)
        readOnce(1, "D", i, 1);

    EXPECT_EQ(state.conditionList.size(), 513);
    EXPECT_EQ(text(state.conditionList.at(511)), "1 D 511 1");
    EXPECT_EQ(text(state.conditionList.at(512)), "1 D 599 1");
}

TEST_F(ConditionReads, AFullListStillFoldsRepetitions)
{
    fill(513);

    readOnce(1, "D", 1300, 1, 0, 8);

    EXPECT_EQ(state.conditionList.size(), 513);
    EXPECT_EQ(state.conditionList.at(300).varKind, 8);
    EXPECT_EQ(text(state.conditionList.at(512)), "1 D 1512 1");
}

TEST_F(ConditionReads, AListThatTheHostMadeLongerIsOverwrittenAtEntry512)
{
    fill(515);

    readOnce(1, "D", 5, 1);

    EXPECT_EQ(state.conditionList.size(), 515);
    EXPECT_EQ(text(state.conditionList.at(512)), "1 D 5 1");
    EXPECT_EQ(text(state.conditionList.at(514)), "1 D 1514 1");
}

TEST_F(ConditionReads, CreateNoCacheRecordBeforeTheReply)
{
    readOnce(1, "D", 5, 1);

    EXPECT_EQ(cacheKeys(), "");
}
