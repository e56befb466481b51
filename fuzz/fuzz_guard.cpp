// SPDX-License-Identifier: MIT
// The reply guard on a line whose events are the input: what it believes is so.
#include "fuzz_target.h"
#include "trial.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int mostSteps = 100;
constexpr unsigned besidesPerMille = 100;

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    BytesChance chance(data, size);
    VirtualTrial trial(chance);
    trial.doBesides(besidesPerMille);
    for (int i = 0; i < mostSteps && !chance.hasEnded() && trial.counts().wrong() == 0; ++i)
        trial.step();
    if (trial.counts().wrong() > 0) {
        std::fprintf(stderr, "%s\n", trial.text().c_str());
        std::abort();
    }
    return 0;
}
