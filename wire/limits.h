// SPDX-License-Identifier: MIT
// What Modbus RTU allows.
#pragma once

namespace dx4 {

/// Stations are 1 to this; 0 is the broadcast, which nobody answers.
inline constexpr int lastStation = 247;

/// Registers of a read, 1 to this: with head and CRC the reply of 255 bytes is the longest there
/// is.
inline constexpr int mostReadable = 125;

/// Registers of a block, 1 to this: a write of 123 fills a frame, a read could ask for two more.
inline constexpr int largestBlock = 123;

} // namespace dx4
