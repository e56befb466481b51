// SPDX-License-Identifier: MIT
// With the guard in between no fault at any request shows a wrong value, loses a write or stays.
#include "fault_cases.h"
#include "run.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

using namespace dx4::faults;
using dx4::host::RequestCounts;

namespace {

constexpr int varying = -1; // how many requests a strike spoils depends on their length

/// What the counters say of a fault, over all its places.
struct Counted {
    const char *fault;
    std::set<std::string> causes; ///< under which the bad exchanges are counted
    int perStrike = 1; ///< bad exchanges for each strike
    int failedWrites = 0; ///< over all places
    int badInAll = 0; ///< bad exchanges over all places, where they vary with the strike
};

void PrintTo(const Counted &row, std::ostream *out)
{
    *out << row.fault;
}

std::vector<Counted> rows()
{
    return {
        { "DropRequest", { "timeouts" } },
        { "DropThreeRequests", { "timeouts" }, 1, 6 },
        { "DropReply", { "timeouts" } },
        { "DropThreeReplies", { "timeouts" }, 1, 6 },
        { "DelayInTime", {}, 0 },
        { "DelayPastTheTimeout", { "timeouts" } },
        { "DelayThreePastTheTimeout", { "timeouts", "truncated" }, varying, 0, 59 },
        { "DelayFourPastTheTimeout", { "timeouts", "truncated" }, varying, 0, 75 },
        { "FlipABitOfTheReply", { "crc" } },
        { "FlipTwoBitsOfThreeReplies", { "crc" }, 1, 6 },
        { "FlipABitOfTheRequest", { "timeouts" } },
        { "FlipTwoBitsOfThreeRequests", { "timeouts" }, 1, 6 },
        { "BreakCrcOfTheReply", { "crc" } },
        { "BreakCrcOfThreeReplies", { "crc" }, 1, 6 },
        { "BreakCrcOfTheRequest", { "timeouts" } },
        { "TruncateTheReply", { "truncated" } },
        { "TruncateThreeReplies", { "truncated" }, 1, 6 },
        { "TruncateTheRequest", { "timeouts" } },
        { "JunkBeforeTheReply", {}, 0 },
        { "JunkInsideTheReply", { "crc" } },
        { "JunkInsideThreeReplies", { "crc" }, 1, 6 },
        { "JunkAfterTheReply", {}, 0 },
        { "JunkBeforeTheRequest", { "timeouts" } },
        { "JunkInsideTheRequest", { "timeouts" } },
        { "JunkAfterTheRequest", { "timeouts" } },
        { "WrongStationInTheReply", { "foreign" } },
        { "WrongStationInThreeReplies", { "foreign" }, 1, 6 },
        { "WrongStationInTheRequest", { "foreign", "timeouts" } },
        { "WrongStationInThreeRequests", { "foreign", "timeouts" }, 1, 6 },
        { "WrongFunctionInTheReply", { "wrong" } },
        { "WrongFunctionInThreeReplies", { "wrong" }, 1, 6 },
        { "WrongFunctionInTheRequest", { "timeouts", "wrong" } },
        { "ExceptionOfTheDevice", { "exception 4" } },
        { "ThreeExceptionsOfTheDevice", { "exception 4" }, 1, 6 },
        { "ExceptionOfTheAddress", { "exception 2" }, 1, 6 },
        { "Echo", {}, 0 },
        { "EchoThreeTimes", { "timeouts" }, varying, 0, 9 },
        { "SilenceOfOneRequest", { "timeouts" } },
        { "SilenceOfSeveralRequests", { "timeouts" }, varying, 43, 350 },
        { "UnplugForOneRequest", { "timeouts" } },
        { "UnplugForSeveralRequests", { "timeouts" }, varying, 43, 350 },
        { "PowerCycleOfOneRequest", { "timeouts" } },
        { "PowerCycleOfSeveralRequests", { "timeouts" }, varying, 33, 311 },
    };
}

/// Causes of bad exchanges with their counts; those that did not occur are left out.
std::map<std::string, int> badExchanges(const RequestCounts &counts)
{
    std::map<std::string, int> bad = {
        { "timeouts", static_cast<int>(counts.timeouts) },
        { "truncated", static_cast<int>(counts.truncated) },
        { "crc", static_cast<int>(counts.badCrc) },
        { "foreign", static_cast<int>(counts.foreign) },
        { "wrong", static_cast<int>(counts.wrongReplies) },
    };
    for (const auto &[code, count] : counts.exceptions)
        bad["exception " + std::to_string(code)] = static_cast<int>(count);
    for (auto entry = bad.begin(); entry != bad.end();)
        entry = entry->second == 0 ? bad.erase(entry) : std::next(entry);
    return bad;
}

int sumOf(const std::map<std::string, int> &counts)
{
    int sum = 0;
    for (const auto &entry : counts)
        sum += entry.second;
    return sum;
}

class GuardedFaults : public ::testing::TestWithParam<Counted> { };

} // namespace

TEST_P(GuardedFaults, AtAnyRequestShowNothingWrongLoseNoWriteAndPass)
{
    const FaultCase &fault = faultCase(GetParam().fault);
    std::set<std::string> causes;
    const bool isVarying = GetParam().perStrike == varying;
    int failedWrites = 0;
    int badInAll = 0;

    for (int n = 1; n <= scenarioRequests; ++n) {
        SCOPED_TRACE("at request " + std::to_string(n));
        const RunResult run = play(Guard::Full, fault.at(n), static_cast<std::uint64_t>(n));
        const std::map<std::string, int> bad = badExchanges(run.line);
        for (const auto &entry : bad)
            causes.insert(entry.first);
        failedWrites += run.failedWrites;
        badInAll += isVarying ? sumOf(bad) : 0;

        ASSERT_EQ(run.strikes, fault.inARow);
        ASSERT_EQ(textOf(run.findings), "");
        ASSERT_LE(run.stepsToRecover, scenarioBlocks);
        ASSERT_EQ(run.confirmedWrites + run.failedWrites, scenarioWrites);
        if (!isVarying) {
            ASSERT_EQ(sumOf(bad), GetParam().perStrike * run.strikes);
        }
        ASSERT_EQ(run.line.good + static_cast<unsigned>(sumOf(bad)), run.line.requests);
    }

    EXPECT_EQ(causes, GetParam().causes);
    EXPECT_EQ(failedWrites, GetParam().failedWrites);
    EXPECT_EQ(badInAll, GetParam().badInAll);
}

INSTANTIATE_TEST_SUITE_P(EveryKind, GuardedFaults, ::testing::ValuesIn(rows()),
                         [](const auto &row) { return std::string(row.param.fault); });

class FaultsBehindAnEcho : public ::testing::TestWithParam<FaultCase> { };

/// Faults of an adapter that gives back every request anyway; the first request is a read, from
/// which the guard learns of it.
std::vector<FaultCase> allButTheEcho()
{
    std::vector<FaultCase> cases;
    for (const FaultCase &fault : faultCases()) {
        if (fault.rule.kind != dx4::sim::FaultKind::Echo)
            cases.push_back(fault);
    }
    return cases;
}

TEST_P(FaultsBehindAnEcho, AtAnyRequestShowNothingWrongLoseNoWriteAndPass)
{
    dx4::sim::FaultRule echo;
    echo.kind = dx4::sim::FaultKind::Echo;

    for (int n = 1; n <= scenarioRequests; ++n) {
        SCOPED_TRACE("at request " + std::to_string(n));
        std::vector<dx4::sim::FaultRule> rules = GetParam().at(n);
        rules.push_back(echo);
        const RunResult run = play(Guard::Full, rules, static_cast<std::uint64_t>(n));

        ASSERT_EQ(textOf(run.findings), "");
        ASSERT_GT(run.line.echoes, 0U);
        ASSERT_LE(run.stepsToRecover, scenarioBlocks);
        ASSERT_EQ(run.confirmedWrites + run.failedWrites, scenarioWrites);
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, FaultsBehindAnEcho, ::testing::ValuesIn(allButTheEcho()),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(FaultScenario, OnAGoodLineConfirmsEveryWriteAndReadsEverything)
{
    const RunResult run = play(Guard::Full, {});

    EXPECT_EQ(textOf(run.findings), "");
    EXPECT_EQ(run.confirmedWrites, 6);
    EXPECT_EQ(run.line.retries, 0U);
    EXPECT_EQ(run.line.giveUps, 0U);
    EXPECT_EQ(run.stepsToRecover, 12);
}

TEST(FaultScenario, HasARowForEveryFaultOfTheSimulator)
{
    std::set<dx4::sim::FaultKind> kinds;
    std::vector<std::string> played;
    for (const Counted &row : rows())
        played.emplace_back(row.fault);
    std::vector<std::string> known;
    for (const FaultCase &fault : faultCases()) {
        kinds.insert(fault.rule.kind);
        known.emplace_back(fault.name);
    }

    EXPECT_EQ(kinds.size(), 14U);
    EXPECT_EQ(dx4::sim::allFaultKinds().size(), 14U);
    EXPECT_EQ(played, known);
}
