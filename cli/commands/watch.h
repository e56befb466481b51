// SPDX-License-Identifier: MIT
// dx4 watch: polls registers and shows them.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: a live table, plain lines, CSV or JSON.
void addWatch(CommandLine &line);

} // namespace dx4::cli
