// SPDX-License-Identifier: MIT
// What an open serial port is asked for beyond its settings.
#pragma once

#include "common/port_claim.h"

namespace dx4::host {

using common::PortClaim;

/// Has a read that finds nothing fail instead of giving 0 bytes, which an unplugged adapter gives.
///
/// @param descriptor  not blocking, with its other settings made
bool tellEmptyFromGone(int descriptor);

/// Lets the kernel switch the RS-485 driver on while it sends, over RTS.
///
/// @return false when the port's driver cannot do that
bool switchDirectionByKernel(int descriptor);

} // namespace dx4::host
