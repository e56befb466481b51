// SPDX-License-Identifier: MIT
// Any entry point in any order with any arguments, against the literal model of the driver.
#include "fuzz_target.h"
#include "linked_driver.h"
#include "operations.h"
#include "rare.h"

#include <cstdio>
#include <cstdlib>

namespace {

// Plays the input once more, this time with a log.
[[noreturn]] void report(const std::uint8_t *data, std::size_t size, model::Effort effort)
{
    model::Interpreter player(linkedEntryPoints(), data, size, effort);
    player.play();
    std::fprintf(stderr, "%s\n", player.report().c_str());
    std::abort();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const model::Effort effort =
        isRare(data, size, 128) ? model::Effort::Any : model::Effort::Small;
    bool agreed = false;
    {
        model::Interpreter player(linkedEntryPoints(), data, size, effort, model::Log::None);
        agreed = player.play();
    }
    if (!agreed)
        report(data, size, effort);
    return 0;
}
