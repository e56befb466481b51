// SPDX-License-Identifier: MIT
// What the panel looks at: a configuration, its line, and the simulated drives of a demonstration.
#pragma once

#include "cli/console/exit_code.h"
#include "cli/line/simulator_process.h"
#include "host/config/control_config.h"
#include "host/recording/frame_tap.h"
#include "host/service/line_service.h"
#include "panel/app/options.h"
#include "panel/connect/checked_config.h"

#include <memory>

namespace dx4::panel {

struct Plant {
    std::unique_ptr<cli::SimulatorProcess> simulator; ///< of a demonstration; outlives the service
    CheckedConfig running; ///< as the line was begun; its port is that of the demonstration
    MakePlan makePlan; ///< plans other configurations, on any thread
    std::shared_ptr<host::FrameTap> tap; ///< of the frames of the line
    std::unique_ptr<host::LineService> service;
};

/// Reads the configuration and starts the line.
///
/// @param failure  out: why there is none; several lines where a file has several errors
std::optional<Plant> makePlant(const Options &options, cli::Failure *failure);

} // namespace dx4::panel
