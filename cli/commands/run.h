// SPDX-License-Identifier: MIT
// dx4 run: sets a frequency and starts the motor.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command.
void addRun(CommandLine &line);

} // namespace dx4::cli
