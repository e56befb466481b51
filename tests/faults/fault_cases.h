// SPDX-License-Identifier: MIT
// Every kind of fault in the forms that differ on the line.
#pragma once

#include "simulator/fault_plan.h"

#include <ostream>
#include <string>
#include <vector>

namespace dx4::faults {

/// One form of a fault.
struct FaultCase {
    const char *name;
    sim::FaultRule rule; ///< without its place
    int inARow = 1; ///< requests that it strikes, one after the other; the host gives up after 3

    /// The rules that strike from the n-th request of the line on.
    std::vector<sim::FaultRule> at(int n) const;
};

/// All of them, in the order of the simulator's kinds.
const std::vector<FaultCase> &faultCases();

/// The one of this name.
const FaultCase &faultCase(const std::string &name);

void PrintTo(const FaultCase &fault, std::ostream *out);

} // namespace dx4::faults
