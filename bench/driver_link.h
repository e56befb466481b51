// SPDX-License-Identifier: MIT
// The loaded driver with what a host lends it.
#pragma once

#include "loaded_driver.h"
#include "poll.h"

namespace bench {

/// Registers in a block where none else is said.
inline constexpr int defaultBlock = 16;

/// The one loaded driver.
LoadedDriver &loadedDriver();

/// Counts its calls in `reportedChanges`; what a host does in its callback is not measured.
void countChange(int linkId, int station, QString &name, int address);
extern long reportedChanges;

/// Starts the link afresh: lists and cache are empty, changes go to countChange.
void startLink(int blockSize = defaultBlock);

/// Starts the link with a cache filled as `poll` says and with its blocks as cyclic reads.
void startPolling(const Poll &poll);

/// Ends the program with a message; for a peer that does not do the work that is measured.
[[noreturn]] void endWith(const char *message);

} // namespace bench
