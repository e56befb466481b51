// SPDX-License-Identifier: MIT
// One sentence on the line, rule by rule.
#include "panel/lineview/line_verdict.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using dx4::host::RequestCounts;

namespace {

RequestCounts good(quint64 count)
{
    RequestCounts counts;
    counts.requests = count;
    counts.good = count;
    return counts;
}

/// Of 100 requests so many ended otherwise.
RequestCounts mixed(quint64 RequestCounts::*cause, quint64 count)
{
    RequestCounts counts = good(100);
    counts.good -= count;
    counts.*cause = count;
    return counts;
}

RequestCounts refused(quint64 count)
{
    RequestCounts counts = good(100);
    counts.good -= count;
    counts.exceptions = { { 2, count } };
    return counts;
}

struct Case {
    const char *name;
    std::vector<RequestCounts> stations; ///< 1, 2, 3
    const char *text;
    bool isBad;
};

std::vector<Case> cases()
{
    RequestCounts late = good(100);
    late.lateReplies = 3;
    RequestCounts noisy = good(100);
    noisy.junkBytes = 12;
    RequestCounts notAsked;
    notAsked.notAsked = 40;
    const RequestCounts dumb = mixed(&RequestCounts::timeouts, 100);
    const RequestCounts garbled = mixed(&RequestCounts::badCrc, 100);
    const auto crc = [](quint64 count) { return mixed(&RequestCounts::badCrc, count); };
    return {
        { "NothingAskedYet", { {}, {} }, "Nothing was asked yet", false },
        { "AllClean",
          { good(1200), good(1300) },
          "All is well: 2500 requests without a failure",
          false },
        { "TwoFailuresAreChance",
          { crc(2), good(100) },
          "All is well: 2 of 200 requests failed and were sent again",
          false },
        { "ThreeInAHundredAreNot",
          { good(100), good(100), crc(3) },
          "Station 3: 3 % wrong CRC, all others clean: look at its stub",
          true },
        { "TheOthersAreNotQuiteClean",
          { crc(1), good(100), crc(9) },
          "Station 3: 9 % wrong CRC, others less: look at its stub",
          true },
        { "AllHaveWrongCrcs",
          { crc(3), crc(5), crc(4) },
          "All stations: up to 5 % wrong CRC: look at the shield and at the resistors at both ends",
          true },
        { "SomeHaveWrongCrcs",
          { good(100), crc(5), crc(4) },
          "Stations 2, 3: up to 5 % wrong CRC, all others clean: look at the cable between them",
          true },
        { "OneStationAloneHasWrongCrcs",
          { crc(4) },
          "Station 1: 4 % wrong CRC: look at the shield and at the resistors at both ends",
          true },
        { "Truncated",
          { good(100), mixed(&RequestCounts::truncated, 6) },
          "Station 2: 6 % truncated, all others clean: look at its plug and its stub",
          true },
        { "Foreign",
          { good(100), mixed(&RequestCounts::foreign, 6) },
          "Station 2: 6 % answered by another station, all others clean: look for a second "
          "master, or an address twice",
          true },
        { "WrongReplies",
          { good(100), mixed(&RequestCounts::wrongReplies, 6) },
          "Station 2: 6 % wrong reply, all others clean: look whether its address is there twice",
          true },
        { "SomeSilence",
          { good(100), mixed(&RequestCounts::timeouts, 6) },
          "Station 2: 6 % silence, all others clean: look at its plug, or give it a longer "
          "response_timeout",
          true },
        { "Refused",
          { good(100), refused(50) },
          "Station 2: 50 % refused, all others clean: look at its registers in the configuration",
          true },
        { "OneIsDead",
          { good(100), dumb, good(100) },
          "Station 2 does not answer, others do: look at its supply, plug and address",
          true },
        { "OneIsDeadAndLeftAlone",
          { good(100), notAsked, good(100) },
          "Station 2 does not answer, others do: look at its supply, plug and address",
          true },
        { "TwoAreDead",
          { good(100), dumb, dumb },
          "Stations 2, 3 do not answer, others do: look at supply, plugs and addresses",
          true },
        { "AllAreDead",
          { dumb, dumb },
          "No station answers: look at the plug of the adapter, at speed and parity, and whether "
          "A and B are swapped",
          true },
        { "TheOnlyOneIsDead",
          { dumb },
          "Station 1 does not answer: look at its supply and address, at speed and parity, and "
          "whether A and B are swapped",
          true },
        { "NoWholeFrame",
          { garbled, garbled },
          "Bytes come, but no whole frame: look at speed and parity",
          true },
        { "WhatHappensMostIsTold",
          { good(100), mixed(&RequestCounts::timeouts, 9), crc(4) },
          "Station 2: 9 % silence, others less: look at its plug, or give it a longer "
          "response_timeout",
          true },
        { "Late",
          { good(100), late },
          "Station 2 answers late: set a longer response_timeout",
          true },
        { "Noise",
          { good(100), noisy },
          "12 bytes of noise between the frames: look at the bias resistors",
          true },
    };
}

class VerdictTest : public ::testing::TestWithParam<Case> { };

LineFacts factsOf(const std::vector<RequestCounts> &stations)
{
    LineFacts facts;
    int number = 0;
    for (const RequestCounts &counts : stations)
        facts.stations.append({ ++number, {}, counts });
    return facts;
}

} // namespace

TEST_P(VerdictTest, SaysIt)
{
    const LineVerdict verdict = verdictOf(factsOf(GetParam().stations), QLocale::c());

    EXPECT_EQ(verdict.text.toStdString(), GetParam().text);
    EXPECT_EQ(verdict.isBad, GetParam().isBad);
}

INSTANTIATE_TEST_SUITE_P(Line, VerdictTest, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<Case> &row) {
                             return std::string(row.param.name);
                         });

TEST(Verdict, AClosedLineIsToldBeforeAllElse)
{
    LineFacts facts = factsOf({ good(100), mixed(&RequestCounts::badCrc, 50) });
    facts.isOpen = false;
    facts.downReason = QStringLiteral("the adapter was pulled");

    const LineVerdict verdict = verdictOf(facts, QLocale::c());

    EXPECT_EQ(verdict.text.toStdString(), "The line is closed: the adapter was pulled");
    EXPECT_TRUE(verdict.isBad);
}

TEST(Verdict, AStationIsNamedAsTheConfigurationNamesIt)
{
    LineFacts facts = factsOf({ good(100), mixed(&RequestCounts::badCrc, 4) });
    facts.stations[1].name = QStringLiteral("Fan %1");

    const LineVerdict verdict = verdictOf(facts, QLocale::c());

    EXPECT_EQ(verdict.text.toStdString(),
              "Station 2 (Fan %1): 4 % wrong CRC, all others clean: look at its stub");
}

TEST(Verdict, ManyStationsAreCountedAndNotAllNamed)
{
    std::vector<RequestCounts> stations(8, mixed(&RequestCounts::badCrc, 4));
    stations[0] = good(100);

    const LineVerdict verdict = verdictOf(factsOf(stations), QLocale::c());

    EXPECT_EQ(verdict.text.toStdString(),
              "Stations 2, 3, 4, 5 and 3 more: up to 4 % wrong CRC, all others clean: look at the "
              "cable between them");
}

TEST(Verdict, ARareFailureIsToldInTenthsOfAPercent)
{
    RequestCounts counts = good(1000);
    counts.good = 992;
    counts.badCrc = 8;

    const LineVerdict verdict = verdictOf(factsOf({ good(1000), counts }), QLocale::c());

    EXPECT_EQ(verdict.text.toStdString(),
              "Station 2: 0.8 % wrong CRC, all others clean: look at its stub");
}

TEST(Verdict, FailuresBelowHalfAPercentAreChance)
{
    RequestCounts counts = good(1000);
    counts.good = 996;
    counts.badCrc = 4;

    EXPECT_FALSE(verdictOf(factsOf({ good(1000), counts }), QLocale::c()).isBad);
}
