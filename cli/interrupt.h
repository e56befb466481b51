// SPDX-License-Identifier: MIT
// Ctrl-C, a termination request and a reader that has gone, noted for the loop that runs.
#pragma once

#include "host/line_settings.h"

namespace dx4::cli {

/// From now on SIGINT, SIGTERM and SIGHUP are noted instead of ending the program.
void watchForInterrupt();

/// Writing to a pipe that nobody reads, or beyond the largest file that is allowed, shall not end
/// the program: a motor may have to be stopped. The write fails instead.
void ignoreBrokenPipe();

/// Whether a signal has come.
bool interrupted();

/// Whether standard output is a pipe whose reader has gone.
bool readerGone();

/// Whether a loop should end: one of the two.
bool shouldEnd();

/// Lets time pass; a signal cuts the first such pause short.
void pauseFor(host::Duration span);

} // namespace dx4::cli
