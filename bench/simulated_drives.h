// SPDX-License-Identifier: MIT
// The simulator in a process of its own, as fast as its line and no slower.
#pragma once

#include "line_peer.h"

#include <QProcess>

namespace bench {

/// Serves stations 1 to as many as the load has, until it goes out of scope.
class SimulatedDrives {
public:
    /// Throws std::runtime_error where it does not start.
    explicit SimulatedDrives(const Load &load);
    ~SimulatedDrives();
    SimulatedDrives(const SimulatedDrives &) = delete;
    SimulatedDrives &operator=(const SimulatedDrives &) = delete;

    /// Device to open as the serial port.
    QString port() const { return m_port; }

private:
    QProcess m_process;
    QString m_port;
};

} // namespace bench
