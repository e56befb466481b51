// SPDX-License-Identifier: MIT
// dx4 line: serial ports, their lasting names, and who holds them.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command.
void addLine(CommandLine &line);

} // namespace dx4::cli
