// SPDX-License-Identifier: MIT
// dx4 copies: stepped copies of an address.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: the addresses that the driver gives for copies at equal steps.
void addCopies(CommandLine &line);

} // namespace dx4::cli
