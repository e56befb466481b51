// SPDX-License-Identifier: MIT
// 32-bit sums and products that wrap, as the driver promises for numbers given by a host.
#pragma once

namespace model {

/// The low 32 bits of `value` as a signed number. Compute the value in 64 bits: `wrap(1LL * a +
/// b)`.
inline int wrap(long long value)
{
    return static_cast<int>(static_cast<unsigned>(value));
}

/// Byte number `index` of `value`, 0 being the lowest.
inline unsigned char byteOf(int value, int index)
{
    return static_cast<unsigned char>((static_cast<unsigned>(value) >> (8 * index)) & 0xFFU);
}

} // namespace model
