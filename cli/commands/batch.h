// SPDX-License-Identifier: MIT
// dx4 batch: commands of a file, one after the other on one line.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

void addBatch(CommandLine &line);

} // namespace dx4::cli
