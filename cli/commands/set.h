// SPDX-License-Identifier: MIT
// dx4 set: writes registers once.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: each value is confirmed by the station's echo.
void addSet(CommandLine &line);

} // namespace dx4::cli
