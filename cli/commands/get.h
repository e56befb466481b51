// SPDX-License-Identifier: MIT
// dx4 get: reads registers once.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: each run of registers is one request, cut at the block size.
void addGet(CommandLine &line);

} // namespace dx4::cli
