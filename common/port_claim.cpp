// SPDX-License-Identifier: MIT
// A serial port for one program alone, and who holds it.
#include "common/port_claim.h"

#include "common/number_text.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace dx4::common {
namespace {

namespace fs = std::filesystem;

constexpr unsigned firstTerminalMajor = 136; // of pseudo-terminals, the first million of them

/// The device that a path names; 0 for none.
dev_t deviceNumber(const std::string &path)
{
    struct stat status { };
    const bool isDevice = stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode);
    return isDevice ? status.st_rdev : 0;
}

/// Names in a folder; none where it cannot be read, as of another user's process.
std::vector<fs::path> entriesOf(const fs::path &folder)
{
    std::vector<fs::path> entries;
    std::error_code failed;
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end;
         entry.increment(failed))
        entries.push_back(entry->path());
    return entries;
}

bool hasOpen(const fs::path &process, dev_t device)
{
    const std::vector<fs::path> descriptors = entriesOf(process / "fd");
    return std::any_of(descriptors.begin(), descriptors.end(), [device](const fs::path &each) {
        return deviceNumber(each.string()) == device;
    });
}

/// Whether a process has the far end of a pseudo-terminal open.
bool hasFarEnd(const fs::path &process, dev_t device)
{
    if (major(device) != firstTerminalMajor)
        return false;
    const std::string index = "tty-index:\t" + std::to_string(minor(device));
    const std::vector<fs::path> descriptors = entriesOf(process / "fdinfo");
    return std::any_of(descriptors.begin(), descriptors.end(), [&index](const fs::path &each) {
        std::ifstream information(each); // only far ends have such a line
        std::string line;
        while (std::getline(information, line)) {
            if (line == index)
                return true;
        }
        return false;
    });
}

std::string programOf(const fs::path &process)
{
    std::error_code failed;
    const fs::path file = fs::read_symlink(process / "exe", failed);
    if (!failed)
        return file.filename().string();
    std::string name;
    std::ifstream stream(process / "comm");
    std::getline(stream, name);
    return name;
}

} // namespace

bool PortClaim::take(const std::string &device)
{
    release();
    const int descriptor = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return errno != EBUSY; // of a port in exclusive mode
    m_descriptor = descriptor;
    // The lock counts for root too, whom exclusive mode does not keep out, and against those who
    // opened before that was set.
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return true;
    release();
    return false;
}

void PortClaim::release()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

std::vector<PortHolder> holdersOf(const std::string &device)
{
    std::vector<PortHolder> holders;
    const dev_t number = deviceNumber(device);
    if (number == 0)
        return holders;
    for (const fs::path &entry : entriesOf("/proc")) {
        const auto process = parseWholeNumber(entry.filename().string());
        if (process && hasOpen(entry, number))
            holders.push_back({ *process, programOf(entry), hasFarEnd(entry, number) });
    }
    std::sort(holders.begin(), holders.end(),
              [](const PortHolder &a, const PortHolder &b) { return a.process < b.process; });
    return holders;
}

std::vector<PortHolder> strangersOn(const std::string &device)
{
    std::vector<PortHolder> holders = holdersOf(device);
    holders.erase(std::remove_if(holders.begin(), holders.end(),
                                 [](const PortHolder &holder) {
                                     return holder.isFarEnd || holder.process == getpid();
                                 }),
                  holders.end());
    return holders;
}

std::string holderText(const std::vector<PortHolder> &holders)
{
    std::string text;
    for (const PortHolder &holder : holders) {
        text += (text.empty() ? "" : ", ") + holder.program + " (process "
            + std::to_string(holder.process) + ')';
    }
    return text.empty() ? "a program of another user" : text;
}

} // namespace dx4::common
