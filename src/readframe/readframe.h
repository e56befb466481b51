// SPDX-License-Identifier: MIT
// Encoders of read requests, function 3.
#pragma once

#include "host_records.h"

/// Appends the read of a type at a fixed register, meant for "SW" and "FU", to driver.sendFrames.
///
/// The reply to expect has 2 * count + 5 bytes with the registers from byte 3 on.
void readframe_oneword(VARIABLE &var);

/// Appends the read of an "F" parameter, or for any other type of the monitor value with this
/// address's low byte, to driver.sendFrames.
void readframe_word(VARIABLE &var);
