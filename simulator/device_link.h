// SPDX-License-Identifier: MIT
// A name of the user's own for the pseudo-terminal.
#pragma once

#include <string>

namespace dx4::sim {

/// A symbolic link to a pseudo-terminal, for as long as the object lives. What was made in its
/// place meanwhile stays.
class DeviceLink {
public:
    /// Takes the place of a link that leads to this device already or to a pseudo-terminal that is
    /// gone, as a run that was killed leaves it, and of nothing else: throws std::runtime_error.
    ///
    /// @param device  "/dev/pts/4"
    DeviceLink(std::string path, std::string device);
    ~DeviceLink();
    DeviceLink(const DeviceLink &) = delete;
    DeviceLink &operator=(const DeviceLink &) = delete;

private:
    const std::string m_path;
    const std::string m_device;
};

} // namespace dx4::sim
