// SPDX-License-Identifier: MIT
// A symbol `driver` that belongs to the host, not to the plug-in.
#pragma once

#include <cstddef>

/// Bytes of the host's own symbol `driver`, as many as the plug-in's object has and more.
inline constexpr std::size_t hostSymbolBytes = 4096;

/// Address of the host's own symbol `driver`.
const unsigned char *hostSymbol();

/// Fills it with 0x5A.
void markHostSymbol();

/// Bytes of it that still hold 0x5A.
std::size_t markedBytes();
