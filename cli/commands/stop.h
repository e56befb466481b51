// SPDX-License-Identifier: MIT
// dx4 stop: stops the motor.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command.
void addStop(CommandLine &line);

} // namespace dx4::cli
