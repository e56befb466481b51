// SPDX-License-Identifier: MIT
// Any bytes as a fault file: rules that a cable can play, or an error with its line.
#include "expect.h"
#include "fuzz_target.h"
#include "simulator/cable.h"
#include "simulator/fault_file.h"

using namespace dx4::sim;

namespace {

void expectLimits(const FaultRule &rule)
{
    expect(rule.frame.value_or(1) >= 1 && rule.every.value_or(1) >= 1, "requests count from 1");
    const double probability = rule.probability.value_or(0.5);
    expect(probability >= 0 && probability <= 1, "a probability is 0 to 1");
    expect(rule.times.value_or(1) >= 1, "a rule strikes at least once");
    expect(rule.duration >= Micros { 0 }, "no time is negative");
}

/// Three reads on a line with these faults; nothing may go wrong but the frames.
void play(const FaultFile &file)
{
    VirtualClock clock;
    Bus bus;
    bus.add(1);
    Cable cable(bus, clock, {}, FaultPlan(file.rules, file.seed.value_or(1)));
    for (int i = 0; i < 3; ++i)
        exchange(cable, clock, withCrc(fromHex("01 03 D0 00 00 02")), Micros(50000));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const FaultFile file = parseFaults({ reinterpret_cast<const char *>(data), size }, "f.toml");

    if (!file.good()) {
        expect(file.error.rfind("f.toml", 0) == 0, "an error names the file");
        return 0;
    }
    for (const FaultRule &rule : file.rules)
        expectLimits(rule);
    play(file);
    return 0;
}
