// SPDX-License-Identifier: MIT
// The signals and the reader that has gone, noted for the loop that runs.
//
// SIGINT, SIGTERM, SIGHUP: end, with the stop. SIGQUIT: end at once, without it. SIGTSTP: let go of
// terminal and port, then stop as every program does. SIGCONT takes them back.
#pragma once

#include "host/line/line_settings.h"

#include <functional>

namespace dx4::cli {

/// From now on these signals are noted instead of ending or stopping the program. The second
/// SIGQUIT ends it as usual, for a loop that does not get to see the first.
void watchForInterrupt();

/// Writing to a pipe that nobody reads, or beyond the largest file that is allowed, shall not end
/// the program: a motor may have to be stopped. The write fails instead.
void ignoreBrokenPipe();

/// Whether a signal has come that asks for the end, with the stop or without.
bool interrupted();

/// Whether SIGQUIT has come: nothing more goes onto the line.
bool quitAsked();

/// How many signals asked for the end.
int signalsSoFar();

/// Whether SIGTSTP has come and was not obeyed yet.
bool suspendAsked();

/// Stops the process where SIGTSTP has come, and returns when it goes on.
void suspendIfAsked();

/// What a view does before the process stops and when it goes on; null: nothing.
void onSuspend(std::function<void()> leave, std::function<void()> comeBack);

/// Whether standard output is a pipe whose reader has gone.
bool readerGone();

/// Whether a loop should end: a signal has come, or the reader has gone.
bool shouldEnd();

/// Lets time pass; a signal cuts the first such pause short.
void pauseFor(host::Duration span);

} // namespace dx4::cli
