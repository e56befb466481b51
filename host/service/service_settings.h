// SPDX-License-Identifier: MIT
// What a service is started with.
#pragma once

#include "host/config/config.h"
#include "host/runtime/runtime.h"

#include <optional>

namespace dx4::host {

struct ServiceSettings {
    RuntimeSettings runtime; ///< without a pause of its own every command ends the pause;
                             ///< `isHurried` is the service's
    Plan plan; ///< what is polled at first; may be empty
    std::optional<Config> config; ///< names, scaling and extra gaps
};

/// Settings as a configuration has them; see runtimeSettings().
///
/// @param plan  of that configuration, as planOf() made it
ServiceSettings serviceSettings(const Config &config, const Plan &plan);

} // namespace dx4::host
