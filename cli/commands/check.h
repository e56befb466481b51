// SPDX-License-Identifier: MIT
// dx4 check: the driver's verdict on an address.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: the verdict of the address checks in words and code.
void addCheck(CommandLine &line);

} // namespace dx4::cli
