// SPDX-License-Identifier: MIT
// What the bits of the status word and the fault codes are called, for whoever shows them.
#pragma once

#include <array>

namespace dx4::common {

/// Of the bits of SW, from bit 0 on.
inline constexpr std::array<const char *, 8> statusNames = {
    "ready",        "running",      "reverse", "fault", "at-set-frequency",
    "accelerating", "decelerating", "warm",
};

/// Of the values of FU, from 0 on.
inline constexpr std::array<const char *, 6> faultNames = {
    "none", "overcurrent", "overvoltage", "undervoltage", "overheat", "communication-loss",
};

} // namespace dx4::common
