// SPDX-License-Identifier: MIT
// What the registers hold when the stations come up, from a text.
#pragma once

#include "simulator/bus.h"

#include <optional>
#include <string>
#include <vector>

namespace dx4::sim {

/// One line of the text.
struct StartValue {
    int line = 0; ///< from 1
    std::optional<int> station; ///< none: all of them
    std::uint16_t address = 0; ///< Modbus register
    std::optional<std::uint16_t> value; ///< none: the station does not have the register
};

/// Lines of the text in their order, or what is wrong with it.
struct StartValues {
    std::string source;
    std::vector<StartValue> values;
    std::string error; ///< "file:line: what was expected"; empty when the text is good

    bool good() const { return error.empty(); }
};

/// Reads a text such as "dx4 params dump" writes: "station 1", "F 8.2 = 5", "F 8.3 refused",
/// "complete". Other registers stand in it likewise, "D 4 = 101" or "SW = 3". What comes before the
/// first "station" is for all stations; "#" begins a comment. `source` names the text in messages.
StartValues parseStartValues(const std::string &text, const std::string &source);

/// Reads a file; a file that cannot be read is an error as well.
StartValues readStartValues(const std::string &path);

/// Sets the values: registers that can be written as a write request does, the others as "hold".
///
/// @return "file:line: what is wrong", for a station or a value that the line does not take; empty
///         when all were set
std::string setStartValues(const StartValues &values, Bus &bus);

} // namespace dx4::sim
