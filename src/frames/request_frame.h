// SPDX-License-Identifier: MIT
// The parts that every Modbus RTU request has in common.
#pragma once

#include "registers/register_address.h"
#include "wire/function_code.h"

namespace dx4 {

/// Bytes of a read request, of a write of one register, and of the echo of any write.
inline constexpr int shortFrameBytes = 8;

/// Writes bytes 0 to 3: station (low 8 bits), function code, register.
void putRequestHead(unsigned char *frame, int station, FunctionCode function,
                    RegisterAddress address);

/// Writes a word at `position`, high byte first.
void putWord(unsigned char *frame, int position, int word);

/// Writes the CRC of the first `length` bytes behind them, low byte first.
/// @return length of the frame with its CRC
int putCrc(unsigned char *frame, int length);

} // namespace dx4
