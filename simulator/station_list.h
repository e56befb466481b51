// SPDX-License-Identifier: MIT
// The stations of a line as a user types them.
#pragma once

#include <string>
#include <vector>

namespace dx4::sim {

/// Stations in the order of the text, or what is wrong with it.
struct StationList {
    std::vector<int> stations;
    std::string error; ///< what was wrong and what would be right; empty when nothing was

    bool good() const { return error.empty(); }
};

/// Reads "1", "1,2,5", "1-32" or "1,3-5": stations 1 to 247, each once.
StationList parseStations(const std::string &text);

} // namespace dx4::sim
