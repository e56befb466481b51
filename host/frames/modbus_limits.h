// SPDX-License-Identifier: MIT
// What Modbus RTU allows.
#pragma once

namespace dx4::host {

/// Stations are 1 to this; 0 is the broadcast, which nobody answers.
constexpr int lastStation = 247;

/// Registers of a block, 1 to this: a write of 123 fills a frame, a read could ask for two more.
constexpr int largestBlock = 123;

} // namespace dx4::host
