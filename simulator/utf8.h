// SPDX-License-Identifier: MIT
// Text from outside, made fit for readers who insist on UTF-8.
#pragma once

#include <string>

namespace dx4::sim {

/// `text` with each byte that belongs to no character replaced by U+FFFD.
std::string validUtf8(const std::string &text);

} // namespace dx4::sim
