// SPDX-License-Identifier: MIT
// A serial port for one program alone, and who holds it.
#pragma once

#include <string>
#include <vector>

namespace dx4::common {

/// A lock on a serial port, held over a descriptor of its own: it is taken before anything is set
/// on the port, so that a refused open leaves the holder's settings alone.
class PortClaim {
public:
    PortClaim() = default;
    ~PortClaim() { release(); }
    PortClaim(const PortClaim &) = delete;
    PortClaim &operator=(const PortClaim &) = delete;

    /// Takes the lock. A port that cannot be opened at all is left to its opener to tell.
    ///
    /// @return false when somebody else holds the port
    bool take(const std::string &device);

    void release();

private:
    int m_descriptor = -1;
};

/// A process that has a port open.
struct PortHolder {
    int process = 0;
    std::string program; ///< name of its file
    bool isFarEnd = false; ///< it is the other end of a pseudo-terminal, as a simulator is
};

/// Processes that have a device open, this one included, by number. Processes of other users show
/// only to root.
std::vector<PortHolder> holdersOf(const std::string &device);

/// Other programs that would talk on the same line: holders of the device, under whatever name they
/// opened it, without this process and without the far end of a pseudo-terminal.
std::vector<PortHolder> strangersOn(const std::string &device);

/// "dx4 (process 812), minicom (process 901)"; says so when none can be seen.
std::string holderText(const std::vector<PortHolder> &holders);

} // namespace dx4::common
