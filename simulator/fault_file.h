// SPDX-License-Identifier: MIT
// Fault rules from a TOML text.
#pragma once

#include "simulator/fault_plan.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dx4::sim {

/// The content of a fault file, or what is wrong with it.
struct FaultFile {
    std::vector<FaultRule> rules;
    std::optional<std::uint64_t> seed;
    std::string error; ///< "file:line: what was expected"; empty when the file is good

    bool good() const { return error.empty(); }
};

/// Reads rules from a text. `source` names it in messages.
FaultFile parseFaults(const std::string &text, const std::string &source);

/// Reads rules from a file; a file that cannot be read is an error as well.
FaultFile readFaultFile(const std::string &path);

} // namespace dx4::sim
