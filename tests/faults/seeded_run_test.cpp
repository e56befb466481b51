// SPDX-License-Identifier: MIT
// Host, driver and stations on a line where everything goes wrong now and then: one seed, one run.
#include "fault_cases.h"
#include "run.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace dx4::faults;
using dx4::sim::FaultRule;

namespace {

constexpr double seldom = 0.01; // each of some forty forms of a fault
constexpr int manySteps = 400;

std::vector<FaultRule> everythingNowAndThen()
{
    std::vector<FaultRule> rules;
    for (const FaultCase &fault : faultCases()) {
        // Two long delays of one reply are more than the guard waits for: it takes a station to
        // answer within twice the response timeout.
        if (fault.rule.kind == dx4::sim::FaultKind::Delay && fault.inARow > 1)
            continue;
        rules.push_back(fault.rule);
        rules.back().probability = seldom;
    }
    return rules;
}

/// With the echo on reads alone: one that strikes a write which is lost cannot be told from its
/// reply.
std::vector<FaultRule> everythingWithTheEchoOnReads()
{
    std::vector<FaultRule> rules = everythingNowAndThen();
    for (FaultRule &rule : rules) {
        if (rule.kind == dx4::sim::FaultKind::Echo)
            rule.registers = dx4::sim::RegisterRange { 0xD000, 0xD0FF };
    }
    return rules;
}

/// A fault that strikes one request.
FaultRule at(int request, const std::string &name)
{
    FaultRule rule = faultCase(name).rule;
    rule.frame = request;
    return rule;
}

/// Findings of other kinds than this one.
std::vector<std::string> without(const std::string &kind, std::vector<std::string> findings)
{
    const auto isOfTheKind = [&](const std::string &finding) { return finding.find(kind) == 0; };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isOfTheKind), findings.end());
    return findings;
}

class SeededRuns : public ::testing::TestWithParam<Guard> { };

} // namespace

TEST_P(SeededRuns, WithTheSameSeedGiveTheIdenticalByteLogTwice)
{
    const RunResult first = play(GetParam(), everythingNowAndThen(), 7, manySteps);
    const RunResult second = play(GetParam(), everythingNowAndThen(), 7, manySteps);

    EXPECT_EQ(first.byteLog, second.byteLog);
    EXPECT_EQ(first.findings, second.findings);
    EXPECT_EQ(first.line.retries, second.line.retries);
    EXPECT_GT(first.line.retries, 0U);
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

TEST(FaultsTogether, ShowNothingWrongLoseNoWriteAndPassWithTheGuard)
{
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RunResult run = play(Guard::Full, everythingWithTheEchoOnReads(), seed, 200);

        ASSERT_GT(run.strikes, 10);
        ASSERT_EQ(textOf(without("silent confirmation", run.findings)), "");
        ASSERT_LE(run.stepsToRecover, scenarioBlocks + scenarioWrites);
        ASSERT_EQ(run.confirmedWrites + run.failedWrites, scenarioWrites);
    }
}

TEST(FaultsTogether, LetAReadEndAWriteThatIsThenConfirmedWithoutAReport)
{
    // The first read of F 0 and 1 of station 2 is put off until their write waits, and succeeds
    // then. It brings the values from before the write, which end the pending one and are
    // reported; the confirmation shows the written values and reports nothing.
    std::vector<FaultRule> drops;
    for (const int request : { 6, 7, 11, 12, 14, 15 })
        drops.push_back(at(request, "DropReply"));

    const RunResult run = play(Guard::Full, drops);

    EXPECT_EQ(run.findings,
              (std::vector<std::string> { "silent confirmation: 2 F 0 shows 14904",
                                          "silent confirmation: 2 F 1 shows 15904" }));
}

TEST(FaultsTogether, LetAnEchoThatComesFromNowhereConfirmALostWrite)
{
    // The limit of what can be told: nothing ever came back before, and the one copy of the write
    // is not its reply.
    const RunResult run = play(Guard::Full, { at(4, "DropRequest"), at(4, "Echo") });

    ASSERT_FALSE(run.findings.empty());
    EXPECT_EQ(run.findings.front(), "lost write: 1 FRE 0 13901 is confirmed and never arrived");
}

TEST(FaultsTogether, LetNoEchoConfirmALostWriteOnceOneWasHeard)
{
    // The write is the seventh request now: three reads go before it to learn of the adapter.
    const RunResult run =
        play(Guard::Full, { at(3, "Echo"), at(6, "Echo"), at(7, "DropRequest"), at(7, "Echo") });

    EXPECT_EQ(textOf(run.findings), "");
    EXPECT_EQ(run.strikes, 4);
    EXPECT_EQ(run.confirmedWrites, scenarioWrites);
}
