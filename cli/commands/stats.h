// SPDX-License-Identifier: MIT
// dx4 stats: how well the line works.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: polls and counts.
void addStats(CommandLine &line);

} // namespace dx4::cli
