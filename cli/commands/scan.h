// SPDX-License-Identifier: MIT
// dx4 scan: finds the stations on a line.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: asks each for its status word.
void addScan(CommandLine &line);

} // namespace dx4::cli
