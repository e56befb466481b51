// SPDX-License-Identifier: MIT
// A fault of the past that a test makes up.
#pragma once

#include "panel/past/past_record.h"

/// 2026-03-01, 12:00:00 UTC.
constexpr dx4::journal::Time faultNoon = 1'772'366'400'000;

/// Three drives of which the third turned at 49.98 Hz until it tripped with fault 2 at noon. A
/// station was not read for the last seconds, frames and parameters are there.
dx4::panel::PastRecord pastFault();
