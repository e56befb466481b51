// SPDX-License-Identifier: MIT
// dx4 plan: the blocks that polling would take.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command, which needs no line.
void addPlan(CommandLine &line);

} // namespace dx4::cli
