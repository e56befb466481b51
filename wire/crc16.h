// SPDX-License-Identifier: MIT
// CRC-16 of Modbus RTU: reflected polynomial 0xA001, initial value 0xFFFF, no final inversion.
#pragma once

#include <cstdint>

namespace dx4 {

/// CRC of `length` bytes; on the wire its low byte goes first. 0xFFFF for a length below 1.
std::uint16_t crc16(const unsigned char *bytes, int length);

} // namespace dx4
