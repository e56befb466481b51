// SPDX-License-Identifier: MIT
// Checks what came back.
#pragma once

/// Checks bytes against the head of driver.sendFrames: length and CRC, nothing else.
///
/// Deliberate: station, function code and byte count of the reply are not looked at.
///
/// @param bytes   may be null for a length of 0
/// @return ReplyCheck: 0 bad, 1 good with register data, 2 good without
int check_rcv_data(unsigned char *bytes, int length);
