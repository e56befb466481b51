// SPDX-License-Identifier: MIT
// dx4 types: the driver's catalogue of register types.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: formats, ranges and rights as the loaded driver tells them.
void addTypes(CommandLine &line);

} // namespace dx4::cli
