// SPDX-License-Identifier: MIT
// Without the guard: what length and CRC alone keep out, and which faults they let through.
#include "fault_cases.h"
#include "run.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

using namespace dx4::faults;

namespace {

/// The faults that make a reply of the right length and CRC which answers another request. The
/// driver believes it, as it is meant to; see docs/behaviour.md, "Replies".
const std::map<std::string, std::set<std::string>> &believed()
{
    static const std::map<std::string, std::set<std::string>> kinds = {
        { "DelayThreePastTheTimeout", { "wrong value" } },
        { "DelayFourPastTheTimeout", { "wrong value" } },
        { "WrongStationInTheRequest", { "lost write", "wrong value" } },
        { "WrongStationInThreeRequests", { "lost write", "wrong value" } },
    };
    return kinds;
}

class PlainFaults : public ::testing::TestWithParam<FaultCase> { };

} // namespace

TEST_P(PlainFaults, AtAnyRequestShowAndLoseOnlyWhatLengthAndCrcLetThrough)
{
    const FaultCase &fault = GetParam();
    const auto expected = believed().find(fault.name);
    std::set<std::string> kinds;
    std::string findings;

    for (int n = 1; n <= scenarioRequests; ++n) {
        SCOPED_TRACE("at request " + std::to_string(n));
        const RunResult run = play(Guard::None, fault.at(n), static_cast<std::uint64_t>(n));
        for (const std::string &finding : run.findings)
            kinds.insert(finding.substr(0, finding.find(':')));
        findings += textOf(run.findings);

        ASSERT_EQ(run.strikes, fault.inARow);
        ASSERT_LE(run.stepsToRecover, scenarioBlocks);
        ASSERT_EQ(run.confirmedWrites + run.failedWrites, scenarioWrites);
        ASSERT_EQ(run.line.good + run.line.retries + run.line.giveUps, run.line.requests);
    }

    EXPECT_EQ(kinds, expected == believed().end() ? std::set<std::string>() : expected->second)
        << findings;
}

INSTANTIATE_TEST_SUITE_P(EveryKind, PlainFaults, ::testing::ValuesIn(faultCases()),
                         [](const auto &row) { return std::string(row.param.name); });
