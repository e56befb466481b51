// SPDX-License-Identifier: MIT
// driver.sendFrames: the frames of the request in progress, sent head first.
#pragma once

#include "host_records.h"

namespace dx4 {

/// What the reply to a frame must look like, in bytes.
struct ExpectedReply {
    int length;
    int dataOffset;
    int dataLength;
};

/// Adds a frame at the tail and gives it back to be filled; its old content means nothing.
///
/// @param var    the variable it serves, copied whole; no element of driver.sendFrames
/// @param reply  what will answer it
FRAME_PRO &appendFrame(const VARIABLE &var, ExpectedReply reply);

/// Removes the head; nothing happens to an empty list.
void removeHeadFrame();

/// Removes every frame.
void dropFrames();

} // namespace dx4
