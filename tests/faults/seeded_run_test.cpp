// SPDX-License-Identifier: MIT
// Host, driver and stations on a line where everything goes wrong now and then: one seed, one run.
#include "fault_cases.h"
#include "run.h"

#include <gtest/gtest.h>

using namespace dx4::faults;
using dx4::sim::FaultRule;

namespace {

constexpr double seldom = 0.01; // each of some forty forms of a fault
constexpr int manySteps = 400;

std::vector<FaultRule> everythingNowAndThen()
{
    std::vector<FaultRule> rules;
    for (const FaultCase &fault : faultCases()) {
        rules.push_back(fault.rule);
        rules.back().probability = seldom;
    }
    return rules;
}

class SeededRuns : public ::testing::TestWithParam<Guard> { };

} // namespace

TEST_P(SeededRuns, WithTheSameSeedGiveTheIdenticalByteLogTwice)
{
    const RunResult first = play(GetParam(), everythingNowAndThen(), 7, manySteps);
    const RunResult second = play(GetParam(), everythingNowAndThen(), 7, manySteps);

    EXPECT_EQ(first.byteLog, second.byteLog);
    EXPECT_EQ(first.findings, second.findings);
    EXPECT_EQ(first.cycle.retries, second.cycle.retries);
    EXPECT_GT(first.cycle.retries, 0U);
}

TEST_P(SeededRuns, MeetEveryKindOfFault)
{
    const std::string log = play(GetParam(), everythingNowAndThen(), 7, manySteps).byteLog;

    for (const dx4::sim::FaultKind kind : dx4::sim::allFaultKinds()) {
        const std::string name = dx4::sim::faultKindName(kind);
        EXPECT_NE(log.find(" ! " + name), std::string::npos) << name;
    }
}

TEST_P(SeededRuns, WithAnotherSeedGiveAnotherByteLog)
{
    const RunResult first = play(GetParam(), everythingNowAndThen(), 7, manySteps);
    const RunResult second = play(GetParam(), everythingNowAndThen(), 8, manySteps);

    EXPECT_NE(first.byteLog, second.byteLog);
}

INSTANTIATE_TEST_SUITE_P(BothExchanges, SeededRuns, ::testing::Values(Guard::None, Guard::Full),
                         [](const auto &row) {
                             return std::string(row.param == Guard::Full ? "Guarded" : "Plain");
                         });
