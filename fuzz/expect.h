// SPDX-License-Identifier: MIT
// What a fuzz target does when a rule is broken.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program with `rule` on standard error unless `holds`, so that the input is kept.
inline void expect(bool holds, const char *rule)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", rule);
    std::abort();
}
