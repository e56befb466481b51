// SPDX-License-Identifier: MIT
// Ctrl-C and a termination request, noted for the loop that runs.
#pragma once

namespace dx4::cli {

/// From now on SIGINT and SIGTERM are noted instead of ending the program.
void watchForInterrupt();

/// Whether one has come.
bool interrupted();

} // namespace dx4::cli
