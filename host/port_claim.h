// SPDX-License-Identifier: MIT
// What an open serial port is asked for beyond its settings.
#pragma once

#include <QString>

namespace dx4::host {

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
    bool take(const QString &device);

    void release();

private:
    int m_descriptor = -1;
};

/// Has a read that finds nothing fail instead of giving 0 bytes, which an unplugged adapter gives.
///
/// @param descriptor  not blocking, with its other settings made
bool tellEmptyFromGone(int descriptor);

/// Lets the kernel switch the RS-485 driver on while it sends, over RTS.
///
/// @return false when the port's driver cannot do that
bool switchDirectionByKernel(int descriptor);

} // namespace dx4::host
