// SPDX-License-Identifier: MIT
// What a test does where the program that it needs is not installed.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

/// Whether a missing program is a failure: KORVANE_REQUIRE_ALL is set, as the pipeline does, to
/// other than 0.
inline bool isEverythingRequired()
{
    const char *wish = std::getenv("KORVANE_REQUIRE_ALL");
    return wish && std::string(wish) != "" && std::string(wish) != "0";
}

/// Ends the test as skipped, or as failed where everything is required. A macro, because it returns
/// from the test.
#define END_WITHOUT(program)                                                                       \
    do {                                                                                           \
        if (isEverythingRequired())                                                                \
            FAIL() << program " is not installed, and KORVANE_REQUIRE_ALL is set";                 \
        GTEST_SKIP() << program " is not installed";                                               \
    } while (false)
