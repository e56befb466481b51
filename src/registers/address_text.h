// SPDX-License-Identifier: MIT
// "F" address text and internal address.
#pragma once

#include <QString>

namespace dx4 {

/// Internal address of an "F" parameter; wraps for groups beyond 23 bits.
int packedAddress(int group, int index);

} // namespace dx4

/// Reads "h.dd": hexadecimal group, point, decimal index.
///
/// Deliberate: only the index decides. A group that is no hexadecimal number counts as group 0.
///
/// @param text     "c" and "C" stand for group 10
/// @param address  out: (group << 8) + index, also when the call fails
/// @return 1 read, -1 not two parts or no index
int a2i_ddd_h_dd(QString text, int &address);
