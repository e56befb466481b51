// SPDX-License-Identifier: MIT
// One run of the scenario: two stations are polled and written while the cable fails as it is told.
#pragma once

#include "host/exchange/counters.h"
#include "host/exchange/cycle.h"
#include "simulator/fault_plan.h"
#include "witness.h"

#include <string>
#include <vector>

namespace dx4::faults {

/// What stands between the driver and the line.
enum class Guard {
    None, ///< length and CRC are believed, as the driver does
    Full, ///< only the request's own reply reaches the driver
};

/// What a run brought.
struct RunResult {
    std::vector<std::string> findings; ///< of the witness
    std::string byteLog; ///< every frame of the line, without times
    host::RequestCounts line;
    int strikes = 0; ///< how often a rule struck
    int confirmedWrites = 0;
    int failedWrites = 0;
    int stepsToRecover = 0; ///< from the end of the fault until every register was read anew
};

/// Requests of the scenario on a good line, each of them a place for a fault.
inline constexpr int scenarioRequests = 32;

/// Writes of the scenario.
inline constexpr int scenarioWrites = 6;

/// Blocks that are read in turn.
inline constexpr int scenarioBlocks = 12;

/// Plays the scenario, waits until the faults are over, and gives the host time to recover.
RunResult play(Guard guard, const std::vector<sim::FaultRule> &rules, std::uint64_t seed = 1,
               int steps = scenarioRequests + 8);

/// The findings as lines, the first few of them.
std::string textOf(const std::vector<std::string> &findings);

} // namespace dx4::faults
