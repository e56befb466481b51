// SPDX-License-Identifier: MIT
// A runtime set up as a configuration says.
#pragma once

#include "host/config/config.h"
#include "host/runtime/runtime.h"

namespace dx4::host {

/// Settings for a runtime: the link and, where the configuration has a stop, the stop of every
/// station, its time and whether it is broadcast; all else at its default.
RuntimeSettings runtimeSettings(const Config &config);

/// Takes over what a configuration says while a runtime runs: what is polled, which stations may be
/// written to, which are stopped and how, and their extra gaps. A station that the configuration
/// does not name keeps its gap. Line and link stay as they are.
void takeOver(Runtime &runtime, const Config &config, const Plan &plan);

/// Sets the extra gaps of the configuration's stations; others stay as they were.
void setExtraGaps(GuardedExchange &guard, const Config &config);

} // namespace dx4::host
