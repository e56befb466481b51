// SPDX-License-Identifier: MIT
// What an open serial port is asked for beyond its settings.
#pragma once

namespace dx4::host {

/// Takes the port for this descriptor alone: later openers are refused, and another that locks its
/// ports is found. Ends when the descriptor is closed.
///
/// @return false when another one has it
bool claimPort(int descriptor);

/// Lets the kernel switch the RS-485 driver on while it sends, over RTS.
///
/// @return false when the port's driver cannot do that
bool switchDirectionByKernel(int descriptor);

} // namespace dx4::host
