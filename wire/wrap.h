// SPDX-License-Identifier: MIT
// 32-bit arithmetic on numbers that a host gives: it wraps around, so that no input is undefined.
#pragma once

namespace dx4 {

constexpr int wrapAdd(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

constexpr int wrapSub(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

constexpr int wrapMul(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b));
}

} // namespace dx4
