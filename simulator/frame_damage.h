// SPDX-License-Identifier: MIT
// What a fault does to the bytes of one frame.
#pragma once

#include "simulator/fault_plan.h"

namespace dx4::sim {

/// Applies a rule that damages frames. What the rule leaves open (which bit, how many bytes, which
/// junk) comes from `dice`. An empty frame stays empty, except that junk needs no frame.
///
/// Station and function stay a valid frame: a value of none means the next station, and function 4
/// instead of 3, 3 instead of any other.
void damage(Bytes &frame, const FaultRule &rule, Dice &dice);

} // namespace dx4::sim
