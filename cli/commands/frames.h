// SPDX-License-Identifier: MIT
// dx4 frames: the driver's requests, and frames of any origin, byte by byte.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds "frames read", "frames write" and "frames decode"; none needs a line.
void addFrames(CommandLine &line);

} // namespace dx4::cli
