// SPDX-License-Identifier: MIT
// The device the simulator serves: a pseudo-terminal of its own or a serial port.
#pragma once

#include "common/port_claim.h"
#include "simulator/bytes.h"

#include <memory>
#include <string>

namespace dx4::sim {

/// An open device. Owns its descriptors.
class Port {
public:
    /// Opens a pseudo-terminal pair in raw mode. The device at path() is for the master; it stays
    /// open here as well, so that the pair lives on while no master has it open. Throws
    /// std::system_error.
    static Port openPty();

    /// Opens a serial device, 8 data bits, and keeps other programs that ask away from it. Throws
    /// std::system_error for a device that cannot be opened or is no serial device,
    /// std::runtime_error for one that another program holds, std::invalid_argument for a speed the
    /// system does not know.
    ///
    /// @param path      device, such as "/dev/ttyUSB0"
    /// @param speed     bit/s
    /// @param parity    'N', 'E' or 'O'
    /// @param stopBits  1 or 2
    static Port openSerial(const std::string &path, int speed, char parity, int stopBits);

    ~Port();
    Port(Port &&other) noexcept;
    Port &operator=(Port &&) = delete;

    /// Device of a pseudo-terminal that the master opens; of a serial port, its own.
    const std::string &path() const { return m_path; }

    /// Descriptor to wait on.
    int descriptor() const { return m_descriptor; }

    /// What has come in, without waiting. Throws std::system_error when the device is gone.
    Bytes read();

    /// Sends without waiting; what the device does not take is lost, as on a line nobody hears.
    void write(const Bytes &bytes);

private:
    Port() = default;

    std::string m_path;
    std::unique_ptr<common::PortClaim> m_claim; ///< of a serial port
    int m_descriptor = -1;
    int m_masterSide = -1; ///< the master's end of a pseudo-terminal, held open; else -1
};

} // namespace dx4::sim
