// SPDX-License-Identifier: MIT
// Files that a person wrote, read as a whole.
#pragma once

#include <optional>
#include <string>

namespace dx4::sim {

/// Reads a file or a pipe, up to 16 MiB.
///
/// @param error  out: "FILE: why not"
std::optional<std::string> readTextFile(const std::string &path, std::string *error);

} // namespace dx4::sim
