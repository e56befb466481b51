// SPDX-License-Identifier: MIT
// The one function that every fuzz target defines.
#pragma once

#include <cstddef>
#include <cstdint>

/// Plays one input and ends the program when a rule is broken.
///
/// @param data  stays the caller's; null for no bytes
/// @return 0
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
