// SPDX-License-Identifier: MIT
// Addresses of stepped copies: their order, their texts, and where they are clamped.
#include "driver_fixture.h"

#include <climits>
#include <ostream>

namespace {

std::string joined(const QVector<QString> &texts)
{
    std::string text;
    for (const QString &entry : texts)
        text += entry.toStdString() + ' ';
    return text;
}

std::string joined(const QVector<int> &numbers)
{
    std::string text;
    for (int number : numbers)
        text += std::to_string(number) + ' ';
    return text;
}

struct CopyRow {
    const char *name;
    const char *type;
    int start;
    int count;
    int step;
    int result;
    const char *texts;
    const char *addresses;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const CopyRow &row, std::ostream *out)
{
    *out << row.name;
}

class MultiCopy : public DriverFixture, public ::testing::WithParamInterface<CopyRow> { };

TEST_P(MultiCopy, GivesTextsAndAddresses)
{
    const CopyRow &row = GetParam();
    QVector<QString> texts;
    QVector<int> addresses;

    const int result = dx4.multiCopy(QString::fromLatin1(row.type), row.start, row.count, row.step,
                                     &texts, &addresses);

    EXPECT_EQ(result, row.result);
    EXPECT_EQ(joined(texts), row.texts);
    EXPECT_EQ(joined(addresses), row.addresses);
}

std::string rowName(const ::testing::TestParamInfo<CopyRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Steps, MultiCopy,
    ::testing::Values(
        CopyRow { "PositiveStepIsUsedAsItIs", "D", 0, 3, 5, 1, "0 5 10 ", "0 5 10 " },
        CopyRow { "StepMinus1CountsAs1", "D", 0, 3, -1, 1, "0 1 2 ", "0 1 2 " },
        CopyRow { "StepMinus2CountsAs2", "D", 0, 3, -2, 1, "0 2 4 ", "0 2 4 " },
        CopyRow { "Step0CountsAs1", "D", 0, 3, 0, 1, "0 1 2 ", "0 1 2 " },
        CopyRow { "StepMinus3CountsAs1", "D", 0, 3, -3, 1, "0 1 2 ", "0 1 2 " },
        CopyRow { "StepMinus7CountsAs1", "D", 0, 3, -7, 1, "0 1 2 ", "0 1 2 " },
        CopyRow { "StepMinus2CountsAs2ForF", "F", 0, 3, -2, 1, "0.0 0.2 0.4 ", "0 2 4 " },
        CopyRow { "Step0CountsAs1ForF", "F", 0, 3, 0, 1, "0.0 0.1 0.2 ", "0 1 2 " },
        CopyRow { "StepMinus7CountsAs1ForF", "F", 0, 3, -7, 1, "0.0 0.1 0.2 ", "0 1 2 " }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Counts, MultiCopy,
    ::testing::Values(CopyRow { "NoCopyOfAKnownTypeIsInRange", "D", 0, 0, 1, 1, "", "" },
                      CopyRow { "NoCopyOfFIsInRange", "F", 0, 0, 1, 1, "", "" },
                      CopyRow { "NegativeCountGivesNone", "D", 0, -1, 1, 1, "", "" },
                      CopyRow { "NegativeCountOfFGivesNone", "F", 0, -1, 1, 1, "", "" },
                      CopyRow { "NoCopyPastTheRangeIsNotClamped", "D", 99, 0, 1, 1, "", "" },
                      CopyRow { "UnknownTypeIsRefused", "XY", 0, 3, 1, 0, "", "" },
                      CopyRow { "UnknownTypeWithoutCopiesIsRefused", "XY", 0, 0, 1, 0, "", "" },
                      CopyRow { "LowerCaseTypeIsUnknown", "f", 0, 3, 1, 0, "", "" },
                      CopyRow { "EmptyTypeIsUnknown", "", 0, 3, 1, 0, "", "" }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    OtherThanF, MultiCopy,
    ::testing::Values(
        CopyRow { "DIsClampedAt37", "D", 36, 3, 1, 2, "36 37 37 ", "36 37 37 " },
        CopyRow { "D37IsInRange", "D", 37, 1, 1, 1, "37 ", "37 " },
        CopyRow { "D38IsClamped", "D", 38, 1, 1, 2, "37 ", "37 " },
        CopyRow { "DStaysClampedOnceBehindTheRange", "D", 30, 4, 5, 2, "30 35 37 37 ",
                  "30 35 37 37 " },
        CopyRow { "CwIsClampedAt0", "CW", 0, 2, 1, 2, "0 0 ", "0 0 " },
        CopyRow { "FreIsClampedAt0", "FRE", 0, 2, 1, 2, "0 0 ", "0 0 " },
        CopyRow { "SwIsClampedAt0", "SW", 0, 2, 1, 2, "0 0 ", "0 0 " },
        CopyRow { "FuIsClampedAt0", "FU", 0, 2, 1, 2, "0 0 ", "0 0 " },
        CopyRow { "OneCopyOfCwIsInRange", "CW", 0, 1, 1, 1, "0 ", "0 " },
        CopyRow { "OneCopyOfFuIsInRange", "FU", 0, 1, 1, 1, "0 ", "0 " },
        CopyRow { "NegativeAddressPrintsUnsigned", "D", -1, 2, 1, 1, "4294967295 0 ", "-1 0 " },
        CopyRow { "NegativeCwPrintsUnsigned", "CW", -1, 3, 1, 2, "4294967295 0 0 ", "-1 0 0 " },
        CopyRow { "StaysClampedBehind32Bits", "D", INT_MAX, 2, 1, 2, "37 37 ", "37 37 " },
        CopyRow { "LargestStepStaysClamped", "D", 36, 3, INT_MAX, 2, "36 37 37 ", "36 37 37 " },
        CopyRow { "ProductBehind32BitsStaysClamped", "CW", 0, 5, 1073741824, 2, "0 0 0 0 0 ",
                  "0 0 0 0 0 " },
        CopyRow { "SmallestStartPrintsUnsigned", "D", INT_MIN, 3, INT_MAX, 2,
                  "2147483648 4294967295 37 ", "-2147483648 -1 37 " }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Parameters, MultiCopy,
    ::testing::Values(
        CopyRow { "CarriesFromTheEndOfGroup0ToGroup1", "F", 16, 5, 1, 1, "0.16 0.17 0.18 1.0 1.1 ",
                  "16 17 18 256 257 " },
        CopyRow { "ClampsBehindTheEndOfGroupC", "F", 2572, 3, 1, 2, "c.12 c.13 c.13 ",
                  "2572 2573 2573 " },
        CopyRow { "ClampIsC13NotC28OfTheDescription", "F", 2588, 1, 1, 2, "c.13 ", "2573 " },
        CopyRow { "CarriesFromGroup9ToGroupC", "F", 2314, 3, 1, 1, "9.10 9.11 c.0 ",
                  "2314 2315 2560 " },
        CopyRow { "CarriesFromTheEndOfGroup1", "F", 274, 2, 1, 1, "1.18 2.0 ", "274 512 " },
        CopyRow { "CarriesFromTheEndOfGroup2", "F", 530, 2, 1, 1, "2.18 3.0 ", "530 768 " },
        CopyRow { "CarriesFromTheEndOfGroup3", "F", 784, 2, 1, 1, "3.16 4.0 ", "784 1024 " },
        CopyRow { "CarriesFromTheEndOfGroup4", "F", 1052, 2, 1, 1, "4.28 5.0 ", "1052 1280 " },
        CopyRow { "CarriesFromTheEndOfGroup5", "F", 1306, 2, 1, 1, "5.26 6.0 ", "1306 1536 " },
        CopyRow { "CarriesFromTheEndOfGroup6", "F", 1555, 2, 1, 1, "6.19 7.0 ", "1555 1792 " },
        CopyRow { "CarriesFromTheEndOfGroup7", "F", 1800, 2, 1, 1, "7.8 8.0 ", "1800 2048 " },
        CopyRow { "CarriesFromTheEndOfGroup8", "F", 2065, 2, 1, 1, "8.17 9.0 ", "2065 2304 " },
        CopyRow { "CarryMeetsEveryGroupInTurn", "F", 1799, 4, 1, 1, "7.7 7.8 8.0 8.1 ",
                  "1799 1800 2048 2049 " },
        CopyRow { "StartBehindTheEndOfAGroupCarriesAtOnce", "F", 25, 2, 1, 1, "1.0 1.1 ",
                  "256 257 " },
        CopyRow { "CarryStartsTheNextGroupAtIndex0WhateverTheStep", "F", 0, 4, 18, 1,
                  "0.0 0.18 1.0 1.18 ", "0 18 256 274 " },
        CopyRow { "StartAtTheLastIndexOfAllCarriesToTheNextGroup", "F", 255, 2, 1, 1, "1.0 1.1 ",
                  "256 257 " },
        CopyRow { "ACopyFarBehindTheEndOfGroupCCarriesTheBase", "F", 5, 2, 2805, 1, "0.5 1.0 ",
                  "5 256 " },
        CopyRow { "FStaysClampedBehind32Bits", "F", 0, 5, 1073741824, 2, "0.0 c.13 c.13 c.13 c.13 ",
                  "0 2573 2573 2573 2573 " },
        CopyRow { "StartAboveTheHighestIsClamped", "F", 5000, 2, 1, 2, "c.13 c.13 ", "2573 2573 " },
        CopyRow { "Group11IsClamped", "F", 2816, 1, 1, 2, "c.13 ", "2573 " },
        CopyRow { "IndexHasNoLeadingZero", "F", 2565, 1, 1, 1, "c.5 ", "2565 " }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    WholeGroups, MultiCopy,
    ::testing::Values(
        CopyRow { "Step256GoesGroupByGroup", "F", 5, 12, 256, 2,
                  "0.5 1.5 2.5 3.5 4.5 5.5 6.5 7.5 8.5 9.5 c.5 c.13 ",
                  "5 261 517 773 1029 1285 1541 1797 2053 2309 2565 2573 " },
        CopyRow { "CarryIsTakenFromTheBaseNotFromTheCopy", "F", 10, 10, 256, 1,
                  "0.10 1.10 2.10 3.10 4.10 5.10 6.10 1.0 2.0 3.0 ",
                  "10 266 522 778 1034 1290 1546 256 512 768 " },
        CopyRow { "RestartRunsToTheEndAndIsClamped", "F", 10, 19, 256, 2,
                  "0.10 1.10 2.10 3.10 4.10 5.10 6.10 1.0 2.0 3.0 4.0 5.0 6.0 7.0 8.0 9.0 c.0 "
                  "c.13 c.13 ",
                  "10 266 522 778 1034 1290 1546 256 512 768 1024 1280 1536 1792 2048 2304 2560 "
                  "2573 2573 " }),
    rowName);

INSTANTIATE_TEST_SUITE_P(BelowZero, MultiCopy,
                         ::testing::Values(CopyRow { "IndexBelowZeroPrintsUnsigned", "F", -1, 3, 1,
                                                     1, "0.4294967295 0.0 0.1 ", "-1 0 1 " },
                                           CopyRow { "GroupBelowZeroPrintsUnsigned", "F", -300, 1,
                                                     1, 1, "ffffffff.4294967252 ", "-300 " }),
                         rowName);

class MultiCopyCall : public DriverFixture { };

TEST_F(MultiCopyCall, AppendsToWhatTheVectorsHeld)
{
    QVector<QString> texts { QStringLiteral("old") };
    QVector<int> addresses { 1, 2 };

    dx4.multiCopy(QStringLiteral("F"), 16, 2, 1, &texts, &addresses);

    EXPECT_EQ(joined(texts), "old 0.16 0.17 ");
    EXPECT_EQ(joined(addresses), "1 2 16 17 ");
}

TEST_F(MultiCopyCall, UnknownTypeLeavesTheVectorsAlone)
{
    QVector<QString> texts { QStringLiteral("old") };
    QVector<int> addresses { 1 };

    dx4.multiCopy(QStringLiteral("XY"), 16, 2, 1, &texts, &addresses);

    EXPECT_EQ(joined(texts), "old ");
    EXPECT_EQ(joined(addresses), "1 ");
}

TEST_F(MultiCopyCall, NullTextsStillGiveAddresses)
{
    QVector<int> addresses;

    const int result = dx4.multiCopy(QStringLiteral("F"), 18, 2, 1, nullptr, &addresses);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(joined(addresses), "18 256 ");
}

TEST_F(MultiCopyCall, NullAddressesStillGiveTexts)
{
    QVector<QString> texts;

    const int result = dx4.multiCopy(QStringLiteral("D"), 37, 2, 1, &texts, nullptr);

    EXPECT_EQ(result, 2);
    EXPECT_EQ(joined(texts), "37 37 ");
}

TEST_F(MultiCopyCall, ChangesNoState)
{
    init();
    QVector<QString> texts;
    QVector<int> addresses;

    dx4.multiCopy(QStringLiteral("F"), 16, 5, 1, &texts, &addresses);

    EXPECT_TRUE(state.dataAreas.isEmpty());
    EXPECT_TRUE(state.readList.isEmpty());
    EXPECT_EQ(state.phase, 0);
}

} // namespace
