// SPDX-License-Identifier: MIT
// dx4 params: the parameters of a station in a file.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds "params dump", "params diff" and "params restore".
void addParams(CommandLine &line);

} // namespace dx4::cli
