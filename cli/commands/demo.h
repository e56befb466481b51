// SPDX-License-Identifier: MIT
// dx4 demo: the driver polling and writing a simulated inverter, for everyone to see.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

struct DemoOptions {
    int seconds = 8; ///< length of the show, 1 or more
    QString simulator; ///< path of dx4-sim; empty: looked for
    QString driver; ///< path of the driver's file; empty: looked for
    bool json = false; ///< one JSON object per line instead of the table
    bool trace = false; ///< frames are shown on standard error
};

/// Adds the command.
void addDemo(CommandLine &line);

/// Starts a simulated inverter as a process of its own, loads the driver by its file, polls and
/// writes, and shows the values on standard output; what is missing goes to standard error.
///
/// @return exit code: 0 done, 1 something is missing or did not answer
int runDemo(const DemoOptions &options);

} // namespace dx4::cli
