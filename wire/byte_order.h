// SPDX-License-Identifier: MIT
// Bytes and 16-bit words: the wire has the high byte first, host and cache the low byte.
#pragma once

namespace dx4 {

/// Bits 0 to 7 of a word.
constexpr unsigned char lowByte(int word)
{
    return static_cast<unsigned char>(word & 0xFF);
}

/// Bits 8 to 15 of a word.
constexpr unsigned char highByte(int word)
{
    return static_cast<unsigned char>((word >> 8) & 0xFF);
}

/// The word made of two bytes, 0 to 65535.
constexpr int wordOf(unsigned char low, unsigned char high)
{
    return low + 256 * high;
}

/// Copies registers and swaps the two bytes of each. The areas must not overlap.
///
/// @param from       2 * registers bytes
/// @param to         2 * registers bytes
/// @param registers  nothing is copied below 1
inline void swapRegisters(const unsigned char *from, unsigned char *to, int registers)
{
    for (int k = 0; k < registers; ++k) {
        to[2 * k] = from[2 * k + 1];
        to[2 * k + 1] = from[2 * k];
    }
}

} // namespace dx4
