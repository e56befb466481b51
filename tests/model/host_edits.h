// SPDX-License-Identifier: MIT
// What a host may do to the driver's members between two calls.
#pragma once

#include "byte_source.h"
#include "pair.h"

#include <string>

namespace model {

/// Draws one edit and applies it to both sides alike. No two cache records ever share a key.
/// @return what was done, for the log
std::string editMembers(ByteSource &source, Pair &pair);

} // namespace model
