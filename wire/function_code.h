// SPDX-License-Identifier: MIT
// Function codes of Modbus, and what every frame of the line has.
#pragma once

namespace dx4 {

/// What the driver asks for.
enum FunctionCode : unsigned char {
    ReadHoldingRegisters = 0x03,
    WriteSingleRegister = 0x06,
    WriteMultipleRegisters = 0x10,
};

/// Set in the function code of a reply that refuses: an exception code follows.
inline constexpr int exceptionBit = 0x80;

/// Bytes of a frame that its CRC takes.
inline constexpr int crcBytes = 2;

} // namespace dx4
