// SPDX-License-Identifier: MIT
// dx4 frames decode: a request or a reply explained.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command to "frames".
void addFramesDecode(Command &frames);

} // namespace dx4::cli
