// SPDX-License-Identifier: MIT
// What "frames decode" says of a request is what the driver does.
#include "bench.h"

#include <gtest/gtest.h>

namespace {

/// Requests of "frames READ_OR_WRITE WORDS", of which decode does not say that the driver builds
/// them, each on a line; "none" behind the last. Runs that leave their group have none.
std::string denied(Bench &bench, const std::string &requests)
{
    const Printed printed = bench.run(
        "while read -r words; do dx4 frames $words --block 123 2>bounds.txt | grep -E "
        "'^[0-9A-F]{2} ' | "
        "while read -r frame; do dx4 frames decode $frame | grep -q 'builds the same bytes' || "
        "echo $words: $frame; done; done <<'END'\n"
        + requests + "END\necho none");
    return printed.out + printed.err;
}

} // namespace

TEST(Decode, EveryReadThatTheDriverBuildsIsKnown)
{
    Bench bench;
    std::string requests;
    for (const char *first : { "F 0.0", "F 8.2", "F c.13", "D 0", "D 37", "SW", "FU" }) {
        for (const char *count : { "1", "2", "17", "123" })
            requests += std::string("read ") + first + " --count " + count + "\n";
    }

    EXPECT_EQ(denied(bench, requests), "none\n");
}

TEST(Decode, EveryWriteThatTheDriverBuildsIsKnown)
{
    Bench bench;

    EXPECT_EQ(denied(bench,
                     "write F c.13 1\nwrite F 8.2 20 15\nwrite F 0.0 1 2 3 4 5 6 7 8 9 10 11 12 13 "
                     "14 15 16 17 18\nwrite FRE 3000\nwrite CW 1\n"),
              "none\n");
}
