// SPDX-License-Identifier: MIT
// Any bytes as the file of a scan that broke off.
#include "cli/line/scan_state.h"
#include "expect.h"
#include "fuzz_target.h"

using namespace dx4::cli;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto state =
        parseScanState(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    if (!state)
        return 0;
    expect(1 <= state->from && state->from <= state->to && state->to <= 247,
           "a scan is of stations 1 to 247");
    expect(state->from <= state->next && state->next <= state->to + 1,
           "the next station is one of the scan, or behind it");
    for (int station : state->found)
        expect(station >= state->from && station < state->next, "found was what was asked");
    expect(goesOn(*state, state->from, state->to), "a scan goes on where it ended");
    return 0;
}
