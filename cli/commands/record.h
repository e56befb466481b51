// SPDX-License-Identifier: MIT
// dx4 record: the frames of a line in a file.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds the command: polls and keeps every frame in a network capture.
void addRecord(CommandLine &line);

} // namespace dx4::cli
