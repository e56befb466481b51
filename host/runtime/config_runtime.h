// SPDX-License-Identifier: MIT
// A runtime set up as a configuration says.
#pragma once

#include "host/config/config.h"
#include "host/runtime/runtime.h"

namespace dx4::host {

/// Settings for a runtime: the link and, where the configuration has a stop, the stop of every
/// station, its time and whether it is broadcast; all else at its default.
RuntimeSettings runtimeSettings(const Config &config);

/// Sets the extra gaps of the configuration's stations; others stay as they were.
void setExtraGaps(GuardedExchange &guard, const Config &config);

} // namespace dx4::host
