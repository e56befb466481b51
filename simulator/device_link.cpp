// SPDX-License-Identifier: MIT
// A name of the user's own for the pseudo-terminal.
#include "simulator/device_link.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace dx4::sim {

namespace {

namespace fs = std::filesystem;

const std::string terminals = "/dev/pts/";

/// Where a link leads; empty for what is no link.
std::string targetOf(const std::string &path)
{
    std::error_code failed;
    return fs::read_symlink(path, failed).string();
}

bool isThere(const std::string &path)
{
    std::error_code failed;
    return fs::exists(fs::symlink_status(path, failed));
}

/// Takes a link away that is of no use to anybody.
void removeLeftOver(const std::string &path, const std::string &device)
{
    if (!isThere(path))
        return;
    const std::string target = targetOf(path);
    if (target.compare(0, terminals.size(), terminals) != 0)
        throw std::runtime_error(
            path + ": is there already and no link to a pseudo-terminal; name another path");
    if (target != device && isThere(target))
        throw std::runtime_error(path + ": leads to " + target
                                 + ", which is in use; remove it or name another path");
    unlink(path.c_str());
}

} // namespace

DeviceLink::DeviceLink(std::string path, std::string device)
    : m_path(std::move(path))
    , m_device(std::move(device))
{
    removeLeftOver(m_path, m_device);
    if (symlink(m_device.c_str(), m_path.c_str()) != 0)
        throw std::system_error(errno, std::generic_category(), m_path);
}

DeviceLink::~DeviceLink()
{
    if (targetOf(m_path) == m_device)
        unlink(m_path.c_str());
}

} // namespace dx4::sim
