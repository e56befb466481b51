// SPDX-License-Identifier: MIT
// Addresses typed in the editor, checked for one kind of access.
#include "driver_fixture.h"

#include <ostream>

namespace {

constexpr int untouched = -777;

struct CheckRow {
    const char *name;
    const char *type;
    const char *text;
    int code;
    int address = untouched;
    int count = 1;
    int accessMode = 0;
    int subIndex = 0;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const CheckRow &row, std::ostream *out)
{
    *out << row.name;
}

class AddressCheck : public DriverFixture, public ::testing::WithParamInterface<CheckRow> { };

TEST_P(AddressCheck, GivesTheCodeAndTheInternalAddress)
{
    const CheckRow &row = GetParam();
    int address = untouched;

    const int code = dx4.checkAddr(QString::fromLatin1(row.type), QString::fromLatin1(row.text),
                                   &address, row.subIndex, row.count, row.accessMode);

    EXPECT_EQ(code, row.code);
    EXPECT_EQ(address, row.address);
}

std::string rowName(const ::testing::TestParamInfo<CheckRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    ParameterGroups, AddressCheck,
    ::testing::Values(CheckRow { "C13EndsGroupC", "F", "c.13", 0, 2573 },
                      CheckRow { "C14IsPastTheEndOfGroupC", "F", "c.14", 2, 2574 },
                      CheckRow { "CapitalCIsGroupC", "F", "C.13", 0, 2573 },
                      CheckRow { "C28OfTheDescriptionIsPastTheEnd", "F", "c.28", 2, 2588 },
                      CheckRow { "Group0EndsAt18", "F", "0.18", 0, 18 },
                      CheckRow { "Group0HasNo19", "F", "0.19", 2, 19 },
                      CheckRow { "Group1EndsAt18", "F", "1.18", 0, 274 },
                      CheckRow { "Group1HasNo19", "F", "1.19", 2, 275 },
                      CheckRow { "Group2EndsAt18", "F", "2.18", 0, 530 },
                      CheckRow { "Group2HasNo19", "F", "2.19", 2, 531 },
                      CheckRow { "Group3EndsAt16", "F", "3.16", 0, 784 },
                      CheckRow { "Group3HasNo17", "F", "3.17", 2, 785 },
                      CheckRow { "Group4EndsAt28", "F", "4.28", 0, 1052 },
                      CheckRow { "Group4HasNo29", "F", "4.29", 2, 1053 },
                      CheckRow { "Group5EndsAt26", "F", "5.26", 0, 1306 },
                      CheckRow { "Group5HasNo27", "F", "5.27", 2, 1307 },
                      CheckRow { "Group6EndsAt19", "F", "6.19", 0, 1555 },
                      CheckRow { "Group6HasNo20", "F", "6.20", 2, 1556 },
                      CheckRow { "Group7EndsAt8", "F", "7.8", 0, 1800 },
                      CheckRow { "Group7HasNo9", "F", "7.9", 2, 1801 },
                      CheckRow { "Group8EndsAt17", "F", "8.17", 0, 2065 },
                      CheckRow { "Group8HasNo18", "F", "8.18", 2, 2066 },
                      CheckRow { "Group9EndsAt11", "F", "9.11", 0, 2315 },
                      CheckRow { "Group9HasNo12", "F", "9.12", 2, 2316 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    ParameterRuns, AddressCheck,
    ::testing::Values(CheckRow { "RunPastTheEndIsOutOfRange", "F", "0.17", 2, 17, 3 },
                      CheckRow { "RunUpToTheEndIsAccepted", "F", "0.17", 0, 17, 2 },
                      CheckRow { "WholeGroupIsAccepted", "F", "0.0", 0, 0, 19 },
                      CheckRow { "OneMoreThanTheGroupIsOutOfRange", "F", "0.0", 2, 0, 20 },
                      CheckRow { "RunDoesNotReachIntoTheNextGroup", "F", "1.18", 2, 274, 2 },
                      CheckRow { "EmptyRunMayStartBehindTheEnd", "F", "0.19", 0, 19, 0 },
                      CheckRow { "EmptyRunTwoBehindTheEndIsRefused", "F", "0.20", 2, 20, 0 },
                      CheckRow { "NegativeRunIsSummedAsItStands", "F", "0.20", 0, 20, -1 },
                      CheckRow { "RunPast32BitsIsOutOfRange", "F", "0.1", 2, 1, 2147483647 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    ParameterTexts, AddressCheck,
    ::testing::Values(CheckRow { "SingleDigitIndexIsAccepted", "F", "0.5", 0, 5 },
                      CheckRow { "LeadingZeroOfTheIndexIsAccepted", "F", "0.05", 0, 5 },
                      CheckRow { "LowerCaseGroupAIsRefused", "F", "a.01", 3 },
                      CheckRow { "CapitalGroupAIsRefused", "F", "A.01", 3 },
                      CheckRow { "LowerCaseGroupBIsRefused", "F", "b.01", 3 },
                      CheckRow { "CapitalGroupBIsRefused", "F", "B.01", 3 },
                      CheckRow { "GroupLetterAWithoutAPointIsRefused", "F", "a", 3 },
                      CheckRow { "GroupAWrittenWithAZeroIsGroupC", "F", "0a.1", 0, 2561 },
                      CheckRow { "FiveCharactersAreTooLong", "F", "0.100", 16 },
                      CheckRow { "FiveCharactersOfThreePartsAreTooLong", "F", "1.2.3", 16 },
                      CheckRow { "ThreePartsAreMalformed", "F", "1.2.", 4, 256 },
                      CheckRow { "TextWithoutAPointIsMalformed", "F", "5", 4, 1285 },
                      CheckRow { "EmptyTextIsMalformed", "F", "", 4, 0 },
                      CheckRow { "PointAloneIsMalformed", "F", ".", 4, 0 },
                      CheckRow { "GroupWithoutAnIndexIsMalformed", "F", "5.", 4, 1280 },
                      CheckRow { "IndexThatIsNoNumberIsMalformed", "F", "1.xy", 4, 256 },
                      CheckRow { "HexadecimalIndexIsMalformed", "F", "1.1f", 4, 256 },
                      CheckRow { "GroupThatIsNoNumberIsGroup0", "F", "x.05", 0, 5 },
                      CheckRow { "MissingGroupIsGroup0", "F", ".5", 0, 5 },
                      CheckRow { "GroupThatIsNoNumberKeepsTheRangeOf0", "F", "x.19", 2, 19 },
                      CheckRow { "GroupDHasNoRangeAndIsAccepted", "F", "d.05", 0, 3333 },
                      CheckRow { "GroupEHasNoRangeAndIsAccepted", "F", "e.99", 0, 3683 },
                      CheckRow { "GroupFHasNoRangeAndIsAccepted", "F", "f.00", 0, 3840 },
                      CheckRow { "Group10IsHexadecimalAndAccepted", "F", "10.5", 0, 4101 },
                      CheckRow { "GroupIsHexadecimalWithItsPrefixToo", "F", "0x1.", 4, 256 },
                      CheckRow { "BlankBeforeTheGroupIsSkipped", "F", " 1.5", 0, 261 },
                      CheckRow { "BlankBeforeTheIndexIsSkipped", "F", "1. 5", 0, 261 }),
    rowName);

// No text is refused for its sign here: the sign is part of the number.
INSTANTIATE_TEST_SUITE_P(
    Signs, AddressCheck,
    ::testing::Values(CheckRow { "PlusBeforeTheGroupIsRead", "F", "+1.5", 0, 261 },
                      CheckRow { "PlusBeforeTheIndexIsRead", "F", "1.+5", 0, 261 },
                      CheckRow { "MinusBeforeTheIndexLandsInTheGroupBelow", "F", "1.-5", 2, 251 },
                      CheckRow { "MinusBeforeTheFirstIndexIsBelowTheRange", "F", "0.-5", 2, -5 },
                      CheckRow { "MinusBeforeGroup1IsBelowTheRange", "F", "-1.5", 2, -251 },
                      CheckRow { "MinusBeforeGroup2HasNoRangeAndIsAccepted", "F", "-2.5", 0, -507 },
                      CheckRow { "PlusBeforeAMonitorAddressIsRead", "D", "+1", 0, 1 },
                      CheckRow { "MinusBeforeAMonitorAddressIsOutOfRange", "D", "-1", 2, -1 },
                      CheckRow { "SignAloneIsMalformed", "SW", "-", 4, 0 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    MonitorValues, AddressCheck,
    ::testing::Values(CheckRow { "D0IsTheFirst", "D", "0", 0, 0 },
                      CheckRow { "D31IsTheLast", "D", "31", 0, 31 },
                      CheckRow { "D32IsOutOfRange", "D", "32", 2, 32 },
                      CheckRow { "D37OfTheDescriptionIsOutOfRange", "D", "37", 2, 37 },
                      CheckRow { "RunUpTo32IsAccepted", "D", "0", 0, 0, 32 },
                      CheckRow { "RunPast32IsOutOfRange", "D", "0", 2, 0, 33 },
                      CheckRow { "RunOfTwoFrom31IsOutOfRange", "D", "31", 2, 31, 2 },
                      CheckRow { "EmptyRunAt32IsAccepted", "D", "32", 0, 32, 0 },
                      CheckRow { "RunPast32BitsIsOutOfRange", "D", "5", 2, 5, 2147483647 },
                      CheckRow { "LeadingZeroIsAccepted", "D", "05", 0, 5 },
                      CheckRow { "BlankBeforeIsSkipped", "D", " 5", 0, 5 },
                      CheckRow { "ThreeCharactersAreTooLong", "D", "031", 16 },
                      CheckRow { "LetterIsMalformed", "D", "x", 4, 0 },
                      CheckRow { "HexadecimalIsMalformed", "D", "1f", 4, 0 },
                      CheckRow { "EmptyTextIsMalformed", "D", "", 4, 0 },
                      CheckRow { "PointIsMalformed", "D", "1.", 4, 0 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    OneWordTypes, AddressCheck,
    ::testing::Values(CheckRow { "Sw0IsAccepted", "SW", "0", 0, 0 },
                      CheckRow { "Fu0IsAccepted", "FU", "0", 0, 0 },
                      CheckRow { "Cw0IsAcceptedForWriting", "CW", "0", 0, 0, 1, 1 },
                      CheckRow { "Fre0IsAcceptedForWriting", "FRE", "0", 0, 0, 1, 1 },
                      CheckRow { "Sw1IsOutOfRange", "SW", "1", 2, 1 },
                      CheckRow { "Fu9IsOutOfRange", "FU", "9", 2, 9 },
                      CheckRow { "Cw1IsOutOfRange", "CW", "1", 2, 1, 1, 1 },
                      CheckRow { "Fre1IsOutOfRange", "FRE", "1", 2, 1, 1, 1 },
                      CheckRow { "RunOfTwoSwIsOutOfRange", "SW", "0", 2, 0, 2 },
                      CheckRow { "RunOfTwoFuIsOutOfRange", "FU", "0", 2, 0, 2 },
                      CheckRow { "RunOfTwoCwIsOutOfRange", "CW", "0", 2, 0, 2, 1 },
                      CheckRow { "RunOfTwoFreIsOutOfRange", "FRE", "0", 2, 0, 2, 1 },
                      CheckRow { "EmptyRunAt1IsAccepted", "SW", "1", 0, 1, 0 },
                      CheckRow { "TwoCharactersOfSwAreTooLong", "SW", "00", 16 },
                      CheckRow { "TwoCharactersOfFuAreTooLong", "FU", "00", 16 },
                      CheckRow { "TwoCharactersOfCwAreTooLong", "CW", "00", 16, untouched, 1, 1 },
                      CheckRow { "TwoCharactersOfFreAreTooLong", "FRE", "00", 16, untouched, 1, 1 },
                      CheckRow { "LetterIsMalformed", "FU", "x", 4, 0 },
                      CheckRow { "EmptyTextIsMalformed", "CW", "", 4, 0, 1, 1 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    AccessRights, AddressCheck,
    ::testing::Values(CheckRow { "FMayBeRead", "F", "0.1", 0, 1, 1, 0 },
                      CheckRow { "FMayBeWritten", "F", "0.1", 0, 1, 1, 1 },
                      CheckRow { "FMayBeReadAndWritten", "F", "0.1", 0, 1, 1, 2 },
                      CheckRow { "DMayBeRead", "D", "1", 0, 1, 1, 0 },
                      CheckRow { "DMayNotBeWritten", "D", "1", 6, untouched, 1, 1 },
                      CheckRow { "DMayNotBeReadAndWritten", "D", "1", 6, untouched, 1, 2 },
                      CheckRow { "CwMayNotBeRead", "CW", "0", 7, untouched, 1, 0 },
                      CheckRow { "CwMayBeWritten", "CW", "0", 0, 0, 1, 1 },
                      CheckRow { "CwMayNotBeReadAndWritten", "CW", "0", 7, untouched, 1, 2 },
                      CheckRow { "FreMayNotBeRead", "FRE", "0", 7, untouched, 1, 0 },
                      CheckRow { "FreMayBeWritten", "FRE", "0", 0, 0, 1, 1 },
                      CheckRow { "FreMayNotBeReadAndWritten", "FRE", "0", 7, untouched, 1, 2 },
                      CheckRow { "SwMayBeRead", "SW", "0", 0, 0, 1, 0 },
                      CheckRow { "SwMayNotBeWritten", "SW", "0", 6, untouched, 1, 1 },
                      CheckRow { "SwMayNotBeReadAndWritten", "SW", "0", 6, untouched, 1, 2 },
                      CheckRow { "FuMayBeRead", "FU", "0", 0, 0, 1, 0 },
                      CheckRow { "FuMayNotBeWritten", "FU", "0", 6, untouched, 1, 1 },
                      CheckRow { "FuMayNotBeReadAndWritten", "FU", "0", 6, untouched, 1, 2 },
                      CheckRow { "OtherModeOfAReadOnlyTypeIsNotTested", "D", "1", 0, 1, 1, 3 },
                      CheckRow { "OtherModeOfAWriteOnlyTypeIsNotTested", "CW", "0", 0, 0, 1, -1 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    UnknownTypes, AddressCheck,
    ::testing::Values(
        CheckRow { "UnknownNameIsRefused", "XY", "0", 3 },
        CheckRow { "LengthOfAnUnknownNameIsTestedFirst", "XY", "00", 16 },
        CheckRow { "LowerCaseNameIsUnknown", "f", "0", 3 },
        CheckRow { "LowerCaseNameAllowsOneCharacter", "f", "0.5", 16 },
        CheckRow { "EmptyNameIsUnknown", "", "0", 3 },
        CheckRow { "TextOfAnUnknownNameIsNotParsed", "XY", "x", 3 },
        CheckRow { "SignForAnUnknownNameIsNotTested", "XY", "-", 3 },
        CheckRow { "SubIndexOfAnUnknownNameIsNotTested", "XY", "0", 3, untouched, 1, 0, -1 },
        CheckRow { "AccessToAnUnknownNameIsNotTested", "XY", "0", 3, untouched, 1, 2 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    NotOffered, AddressCheck,
    ::testing::Values(CheckRow { "FIsRefusedBeforeParsing", "F", "0.05", 1, untouched, 1, 0, -1 },
                      CheckRow { "DIsRefusedBeforeParsing", "D", "5", 1, untouched, 1, 0, -1 },
                      CheckRow { "CwIsRefusedBeforeParsing", "CW", "0", 1, untouched, 1, 1, -1 },
                      CheckRow { "FreIsRefusedBeforeParsing", "FRE", "0", 1, untouched, 1, 1, -1 },
                      CheckRow { "SwIsRefusedBeforeParsing", "SW", "0", 1, untouched, 1, 0, -1 },
                      CheckRow { "FuIsRefusedBeforeParsing", "FU", "0", 1, untouched, 1, 0, -1 },
                      CheckRow { "OtherSubIndexesAreNotTested", "F", "0.05", 0, 5, 1, 0, -2 },
                      CheckRow { "PositiveSubIndexesAreNotTested", "F", "0.05", 0, 5, 1, 0, 7 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Order, AddressCheck,
    ::testing::Values(CheckRow { "SubIndexComesBeforeLength", "F", "0.100", 1, untouched, 1, 0,
                                 -1 },
                      CheckRow { "SubIndexComesBeforeAccess", "D", "1", 1, untouched, 1, 1, -1 },
                      CheckRow { "LengthComesBeforeTheGroupLetter", "F", "a.100", 16 },
                      CheckRow { "LengthComesBeforeAccess", "SW", "00", 16, untouched, 1, 1 },
                      CheckRow { "AccessComesBeforeParsing", "D", "x", 6, untouched, 1, 1 },
                      CheckRow { "AccessComesBeforeRange", "D", "99", 6, untouched, 1, 2 },
                      CheckRow { "WriteOnlyComesBeforeParsing", "CW", "x", 7, untouched, 1, 0 }),
    rowName);

class AddressCheckCall : public DriverFixture { };

TEST_F(AddressCheckCall, NullAddressIsNotWritten)
{
    const int code = dx4.checkAddr(QStringLiteral("F"), QStringLiteral("0.19"), nullptr, 0, 1, 0);

    EXPECT_EQ(code, 2);
}

TEST_F(AddressCheckCall, ChangesNoState)
{
    init();
    int address = 0;

    dx4.checkAddr(QStringLiteral("F"), QStringLiteral("0.5"), &address, 0, 1, 0);

    EXPECT_TRUE(state.dataAreas.isEmpty());
    EXPECT_TRUE(state.readList.isEmpty());
    EXPECT_EQ(state.phase, 0);
}

} // namespace
