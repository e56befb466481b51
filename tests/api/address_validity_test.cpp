// SPDX-License-Identifier: MIT
// Addresses checked without regard to access rights or length of the text.
#include "driver_fixture.h"

#include <ostream>

namespace {

constexpr int untouched = -777;

struct ValidityRow {
    const char *name;
    const char *type;
    const char *text;
    int code;
    int address = untouched;
    int count = 1;
    int typeFlag = 1;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const ValidityRow &row, std::ostream *out)
{
    *out << row.name;
}

class AddressValidity : public DriverFixture, public ::testing::WithParamInterface<ValidityRow> { };

TEST_P(AddressValidity, GivesTheCodeAndTheInternalAddress)
{
    const ValidityRow &row = GetParam();
    int address = untouched;

    const int code =
        dx4.checkAddrValidity(QString::fromLatin1(row.type), QString::fromLatin1(row.text),
                              &address, row.count, row.typeFlag);

    EXPECT_EQ(code, row.code);
    EXPECT_EQ(address, row.address);
}

std::string rowName(const ::testing::TestParamInfo<ValidityRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    ParameterGroups, AddressValidity,
    ::testing::Values(ValidityRow { "C13EndsGroupC", "F", "c.13", 0, 2573 },
                      ValidityRow { "C14IsPastTheEndOfGroupC", "F", "c.14", 2, 2574 },
                      ValidityRow { "CapitalCIsGroupC", "F", "C.13", 0, 2573 },
                      ValidityRow { "Group0EndsAt18", "F", "0.18", 0, 18 },
                      ValidityRow { "Group0HasNo19", "F", "0.19", 2, 19 },
                      ValidityRow { "Group3EndsAt16", "F", "3.16", 0, 784 },
                      ValidityRow { "Group3HasNo17", "F", "3.17", 2, 785 },
                      ValidityRow { "Group7EndsAt8", "F", "7.08", 0, 1800 },
                      ValidityRow { "Group7HasNo9", "F", "7.09", 2, 1801 },
                      ValidityRow { "Group9EndsAt11", "F", "9.11", 0, 2315 },
                      ValidityRow { "Group9HasNo12", "F", "9.12", 2, 2316 },
                      ValidityRow { "RunPastTheEndIsOutOfRange", "F", "0.17", 2, 17, 3 },
                      ValidityRow { "RunUpToTheEndIsAccepted", "F", "0.17", 0, 17, 2 },
                      ValidityRow { "RunPast32BitsIsOutOfRange", "F", "0.1", 2, 1, 2147483647 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    ParameterTexts, AddressValidity,
    ::testing::Values(ValidityRow { "GroupLetterAIsTakenAsGroupC", "F", "a.01", 0, 2561 },
                      ValidityRow { "GroupLetterAKeepsTheRangeOfGroupC", "F", "a.14", 2, 2574 },
                      ValidityRow { "GroupLetterBHasNoRange", "F", "b.01", 0, 2817 },
                      ValidityRow { "GroupDHasNoRangeAndIsAccepted", "F", "d.05", 0, 3333 },
                      ValidityRow { "GroupEHasNoRangeAndIsAccepted", "F", "e.99", 0, 3683 },
                      ValidityRow { "GroupFHasNoRangeAndIsAccepted", "F", "f.00", 0, 3840 },
                      ValidityRow { "Group10IsHexadecimalAndAccepted", "F", "10.5", 0, 4101 },
                      ValidityRow { "GroupCWithAZeroBeforeIsGroup12", "F", "0c.1", 0, 3073 },
                      ValidityRow { "GroupWithItsPrefixIsHexadecimal", "F", "0x1.5", 0, 261 },
                      ValidityRow { "LengthIsNotTested", "F", "00000.00005", 0, 5 },
                      ValidityRow { "Index100IsOutOfRange", "F", "0.100", 2, 100 },
                      ValidityRow { "IndexPast255LandsInTheNextGroup", "F", "0.256", 0, 256 },
                      ValidityRow { "ThreePartsAreMalformed", "F", "1.2.", 4, 256 },
                      ValidityRow { "ThreeNumbersAreMalformed", "F", "1.2.3", 4, 259 },
                      ValidityRow { "TextWithoutAPointIsMalformed", "F", "5", 4, 1285 },
                      ValidityRow { "EmptyTextIsMalformed", "F", "", 4, 0 },
                      ValidityRow { "GroupWithoutAnIndexIsMalformed", "F", "5.", 4, 1280 },
                      ValidityRow { "HexadecimalIndexIsMalformed", "F", "c.0x5", 4, 2560 },
                      ValidityRow { "GroupThatIsNoNumberIsGroup0", "F", "x.05", 0, 5 },
                      ValidityRow { "MissingGroupIsGroup0", "F", ".5", 0, 5 },
                      ValidityRow { "PackingWrapsAt32Bits", "F", "7fffffff.5", 2, -251 },
                      ValidityRow { "PackedBelowGroup0HasNoRange", "F", "7ffffffe.5", 0, -507 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Signs, AddressValidity,
    ::testing::Values(ValidityRow { "MinusIsMalformed", "D", "-1", 4 },
                      ValidityRow { "PlusIsMalformed", "D", "+1", 4 },
                      ValidityRow { "MinusAnywhereIsMalformed", "F", "1.-5", 4 },
                      ValidityRow { "PlusAnywhereIsMalformed", "F", "1.+5", 4 },
                      ValidityRow { "MinusOfAOneWordTypeIsMalformed", "SW", "0-", 4 },
                      ValidityRow { "MinusOfAnUnknownTypeIsMalformed", "XY", "-1", 4 },
                      ValidityRow { "PlusOfAnUnknownTypeIsMalformed", "XY", "1+", 4 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    MonitorValues, AddressValidity,
    ::testing::Values(ValidityRow { "D0IsTheFirst", "D", "0", 0, 0 },
                      ValidityRow { "D31IsTheLast", "D", "31", 0, 31 },
                      ValidityRow { "D32IsOutOfRange", "D", "32", 2, 32 },
                      ValidityRow { "D37OfTheDescriptionIsOutOfRange", "D", "37", 2, 37 },
                      ValidityRow { "RunUpTo32IsAccepted", "D", "30", 0, 30, 2 },
                      ValidityRow { "RunPast32IsOutOfRange", "D", "30", 2, 30, 3 },
                      ValidityRow { "EmptyRunAt32IsAccepted", "D", "32", 0, 32, 0 },
                      ValidityRow { "RunPast32BitsIsOutOfRange", "D", "5", 2, 5, 2147483647 },
                      ValidityRow { "LengthIsNotTested", "D", "00005", 0, 5 },
                      ValidityRow { "BlanksAroundAreSkipped", "D", " 5 ", 0, 5 },
                      ValidityRow { "HexadecimalIsMalformed", "D", "0x5", 4, 0 },
                      ValidityRow { "FractionIsMalformed", "D", "1.5", 4, 0 },
                      ValidityRow { "TooLargeANumberIsMalformed", "D", "2147483648", 4, 0 },
                      ValidityRow { "EmptyTextIsMalformed", "D", "", 4, 0 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    OneWordTypes, AddressValidity,
    ::testing::Values(ValidityRow { "Cw0IsAccepted", "CW", "0", 0, 0 },
                      ValidityRow { "Sw0IsAccepted", "SW", "0", 0, 0 },
                      ValidityRow { "Fre0IsAccepted", "FRE", "0", 0, 0 },
                      ValidityRow { "Fu0IsAccepted", "FU", "0", 0, 0 },
                      ValidityRow { "Cw1IsOutOfRange", "CW", "1", 2, 1 },
                      ValidityRow { "Sw1IsOutOfRange", "SW", "1", 2, 1 },
                      ValidityRow { "Fre1IsOutOfRange", "FRE", "1", 2, 1 },
                      ValidityRow { "Fu1IsOutOfRange", "FU", "1", 2, 1 },
                      ValidityRow { "RunOfTwoIsOutOfRange", "SW", "0", 2, 0, 2 },
                      ValidityRow { "EmptyRunAt1IsAccepted", "FU", "1", 0, 1, 0 },
                      ValidityRow { "LengthIsNotTested", "CW", "00", 0, 0 },
                      ValidityRow { "CwLetterIsMalformed", "CW", "x", 4, 0 },
                      ValidityRow { "SwLetterIsMalformed", "SW", "x", 4, 0 },
                      ValidityRow { "FreLetterIsMalformed", "FRE", "x", 4, 0 },
                      ValidityRow { "FuLetterIsMalformed", "FU", "x", 4, 0 }),
    rowName);

INSTANTIATE_TEST_SUITE_P(UnknownTypes, AddressValidity,
                         ::testing::Values(ValidityRow { "UnknownNameIsRefused", "XY", "0", 3 },
                                           ValidityRow { "LowerCaseNameIsUnknown", "d", "0", 3 },
                                           ValidityRow { "EmptyNameIsUnknown", "", "0", 3 },
                                           ValidityRow { "TextOfAnUnknownNameIsNotParsed", "XY",
                                                         "long text", 3 },
                                           ValidityRow { "TypeFlagOfAnUnknownNameIsNotTested", "XY",
                                                         "0", 3, untouched, 1, 0 }),
                         rowName);

INSTANTIATE_TEST_SUITE_P(
    NotOffered, AddressValidity,
    ::testing::Values(ValidityRow { "FIsRefusedBeforeParsing", "F", "0.5", 1, untouched, 1, 0 },
                      ValidityRow { "DIsRefusedBeforeParsing", "D", "5", 1, untouched, 1, 0 },
                      ValidityRow { "CwIsRefusedBeforeParsing", "CW", "0", 1, untouched, 1, 0 },
                      ValidityRow { "SwIsRefusedBeforeParsing", "SW", "0", 1, untouched, 1, 0 },
                      ValidityRow { "FreIsRefusedBeforeParsing", "FRE", "0", 1, untouched, 1, 0 },
                      ValidityRow { "FuIsRefusedBeforeParsing", "FU", "0", 1, untouched, 1, 0 },
                      ValidityRow { "TypeFlagComesBeforeTheSign", "D", "-1", 1, untouched, 1, 0 },
                      ValidityRow { "SignOfAnUnknownNameComesFirst", "XY", "-1", 4, untouched, 1,
                                    0 },
                      ValidityRow { "OtherTypeFlagsAreNotTested", "D", "5", 0, 5, 1, -1 },
                      ValidityRow { "LargerTypeFlagsAreNotTested", "D", "5", 0, 5, 1, 2 }),
    rowName);

class AddressValidityCall : public DriverFixture { };

TEST_F(AddressValidityCall, NullAddressIsNotWritten)
{
    const int code =
        dx4.checkAddrValidity(QStringLiteral("D"), QStringLiteral("32"), nullptr, 1, 1);

    EXPECT_EQ(code, 2);
}

} // namespace
