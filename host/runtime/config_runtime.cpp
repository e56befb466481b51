// SPDX-License-Identifier: MIT
// A runtime set up as a configuration says.
#include "host/runtime/config_runtime.h"

namespace dx4::host {

RuntimeSettings runtimeSettings(const Config &config)
{
    RuntimeSettings settings;
    settings.link = config.link;
    settings.stopBroadcast = config.stop.broadcast;
    settings.stopBudget = config.stop.confirmWithin;
    for (const StationConfig &station : config.stations) {
        settings.stations.append(station.address);
        if (config.stop.controlWord)
            settings.stops.append({ station.address, *config.stop.controlWord });
    }
    return settings;
}

void takeOver(Runtime &runtime, const Config &config, const Plan &plan)
{
    runtime.setPlan(plan);
    const RuntimeSettings settings = runtimeSettings(config);
    runtime.setStops(settings.stops);
    runtime.setStations(settings.stations);
    runtime.setStopBroadcast(settings.stopBroadcast);
    runtime.setStopBudget(settings.stopBudget);
    setExtraGaps(runtime.guard(), config);
}

void setExtraGaps(GuardedExchange &guard, const Config &config)
{
    for (const StationConfig &station : config.stations)
        guard.setExtraGap(station.address, station.extraGap);
}

} // namespace dx4::host
