// SPDX-License-Identifier: MIT
// dx4 replay: a recording through the driver once more.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: shows every change of a value that the recording brings about.
void addReplay(CommandLine &line);

} // namespace dx4::cli
