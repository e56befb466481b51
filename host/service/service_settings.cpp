// SPDX-License-Identifier: MIT
// What a service is started with.
#include "host/service/service_settings.h"

#include "host/runtime/config_runtime.h"

namespace dx4::host {

ServiceSettings serviceSettings(const Config &config, const Plan &plan)
{
    return { runtimeSettings(config), plan, config };
}

} // namespace dx4::host
