// SPDX-License-Identifier: MIT
// Any entry point in any order with any arguments, against the literal model of the driver.
#include "fuzz_target.h"
#include "linked_driver.h"
#include "operations.h"

#include <cstdio>
#include <cstdlib>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    model::Interpreter player(linkedEntryPoints(), data, size);
    if (player.play())
        return 0;
    std::fprintf(stderr, "%s\n", player.report().c_str());
    std::abort();
}
