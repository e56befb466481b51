// SPDX-License-Identifier: MIT
// A libmodbus slave in a process of its own, at the other end of a pseudo-terminal.
#pragma once

#include <string>

#include <sys/types.h>

namespace bench {

/// Serves all registers of station 1 until it goes out of scope.
class LineSlave {
public:
    LineSlave();
    ~LineSlave();
    LineSlave(const LineSlave &) = delete;
    LineSlave &operator=(const LineSlave &) = delete;

    /// Device to open as the serial port.
    const std::string &port() const { return m_port; }

private:
    int m_master;
    int m_keptOpen; // else the slave would see the line go down between two clients
    pid_t m_process;
    std::string m_port;
};

} // namespace bench
