// SPDX-License-Identifier: MIT
// A recording played through host and driver once more.
#pragma once

#include "host/exchange/cycle.h"
#include "host/recording/replay_line.h"

namespace dx4::host {

/// How far a replay came.
struct ReplayResult {
    int played = 0; ///< requests of the recording that the driver sent again
    int unrecorded = 0; ///< requests of the driver that the recording does not have; failed
    bool complete = false; ///< the recording was played to its end
    QString stoppedAt; ///< the request that could not be brought about; empty when complete
};

/// Plays a recording, so that a fault seen once can be looked at again with every value change.
///
/// The link is to be fresh and to poll what was polled; the recording is to begin where the link
/// began, else the blocks ahead of its first request are failed once. Writes of the recording are
/// queued in the link, and reads that are not the next cyclic one are asked for as condition
/// reads, each right before its turn. So callbacks and cache follow as they did, with one
/// exception: a condition read longer than a block was one outcome and becomes one per block.
///
/// @param line      made from the recording
/// @param exchange  sends over `line`; the kind that was used while recording
ReplayResult replay(Link &link, ReplayLine &line, Exchange &exchange);

} // namespace dx4::host
