// SPDX-License-Identifier: MIT
// What it takes to believe that an adapter echoes, or that it does not.
#include "host/exchange/adapter_echo.h"

#include <gtest/gtest.h>

#include <string>

using namespace dx4::host;

namespace {

/// The state after exchanges, one letter each: "e" echoed, "c" clean, "l" a lone copy of a write.
std::string stateAfter(const std::string &exchanges, EchoMode mode = EchoMode::Auto)
{
    AdapterEcho echo(mode);
    for (char exchange : exchanges) {
        if (exchange == 'e')
            echo.noteEcho();
        else if (exchange == 'c')
            echo.noteNoEcho();
        else
            echo.noteLoneCopy();
    }
    const std::string names[] = { "unknown", "absent", "present" };
    return names[static_cast<int>(echo.state())];
}

struct Row {
    const char *name;
    const char *exchanges;
    const char *state;
};

class AdapterEchoLearns : public ::testing::TestWithParam<Row> { };

} // namespace

TEST_P(AdapterEchoLearns, FromExchangesInARow)
{
    EXPECT_EQ(stateAfter(GetParam().exchanges), GetParam().state);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AdapterEchoLearns,
    ::testing::Values(
        Row { "NothingAtFirst", "", "unknown" },
        Row { "TwoCleanRepliesAreTooFewAtFirst", "cc", "unknown" },
        Row { "ThreeCleanRepliesAreEnoughAtFirst", "ccc", "absent" },
        Row { "ALoneCopyTeachesNothing", "l", "unknown" },
        Row { "ALoneCopyDoesNotShakeACleanLine", "cccl", "absent" },
        Row { "OneEchoShakesACleanLine", "ccce", "unknown" },
        Row { "FifteenCleanRepliesAfterAnEchoAreTooFew", "eccccccccccccccc", "unknown" },
        Row { "SixteenCleanRepliesAfterAnEchoAreEnough", "ecccccccccccccccc", "absent" },
        Row { "AnEchoBetweenCleanRepliesBeginsAnew", "eccccccccecccccccc", "unknown" },
        Row { "TwoEchoesAreTooFew", "ee", "unknown" },
        Row { "ThreeEchoesAreEnough", "eee", "present" },
        Row { "ACleanReplyBetweenEchoesBeginsAnew", "eecee", "unknown" },
        Row { "ALoneCopyShakesAnEcho", "eeel", "unknown" },
        Row { "ACleanReplyShakesAnEcho", "eeec", "unknown" }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(AdapterEchoTest, WhatTheUserSaysIsBelieved)
{
    EXPECT_EQ(stateAfter("ccc", EchoMode::Yes), "present");
    EXPECT_EQ(stateAfter("l", EchoMode::Yes), "present");
    EXPECT_EQ(stateAfter("eee", EchoMode::No), "absent");
}
