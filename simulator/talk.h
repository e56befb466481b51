// SPDX-License-Identifier: MIT
// What dx4-sim says of itself, on standard error.
#pragma once

#include <string>

namespace dx4::sim {

/// Writes "dx4-sim: " and the text as a line of standard error; never waits, from any thread. What
/// has no room there is counted, which is told as soon as there is.
void say(const std::string &text);

/// Gives standard error a moment to take what waits.
void settleTalk();

} // namespace dx4::sim
