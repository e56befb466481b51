// SPDX-License-Identifier: MIT
// Lengths as the driver's boundary counts them.
#pragma once

namespace dx4::host {

/// Number of elements as a 32-bit int; Qt 6 counts in 64 bits, frames and lists stay far below.
template <typename Container> int lengthOf(const Container &container)
{
    return static_cast<int>(container.size());
}

} // namespace dx4::host
