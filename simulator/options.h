// SPDX-License-Identifier: MIT
// The command line of dx4-sim.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace dx4::sim {

/// What the command line asks for.
struct Options {
    bool pty = false; ///< serve a pseudo-terminal of our own
    std::string port; ///< or this serial device
    std::vector<int> stations = { 1 };
    std::string linkPath; ///< empty: no link to the pseudo-terminal
    std::string valueFile; ///< empty: registers begin with their defaults
    std::string faultFile; ///< empty: a good line
    std::optional<std::uint64_t> seed; ///< over that of the fault file
    int speed = 9600; ///< bit/s; 0 on a pseudo-terminal: no character time
    std::string format = "8N1"; ///< data bits, parity, stop bits
    int turnaroundMs = 2;
    std::string logFile; ///< empty: no byte log
    std::string captureFile; ///< empty: no capture
    bool json = false;

    char parity() const { return format[1]; }
    int stopBits() const { return format[2] - '0'; }

    /// Bits of one character on the line, start bit included.
    int bitsPerCharacter() const { return 9 + (parity() == 'N' ? 0 : 1) + stopBits(); }
};

/// Exit codes of the program.
enum ExitCode { Done = 0, DeviceError = 1, UsageError = 2 };

/// Reads the command line into `options`.
///
/// @param out     help and version go here
/// @param errors  what is wrong with the arguments goes here, without the end of its last line
/// @return the code to leave with; none when the program is to serve
std::optional<int> readOptions(int argc, char **argv, Options &options, std::ostream &out,
                               std::ostream &errors);

} // namespace dx4::sim
