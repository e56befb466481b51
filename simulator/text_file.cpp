// SPDX-License-Identifier: MIT
// Files that a person wrote, read as a whole.
#include "simulator/text_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace dx4::sim {

namespace {

constexpr std::size_t largest = std::size_t { 16 } << 20; // bytes

/// @return errno of what went wrong, 0 for nothing
int readToTheEnd(int descriptor, std::string &text)
{
    char part[4096];
    while (text.size() <= largest) {
        const ssize_t count = read(descriptor, part, sizeof part);
        if (count > 0)
            text.append(part, static_cast<std::size_t>(count));
        else if (count == 0)
            return 0;
        else if (errno != EINTR)
            return errno;
    }
    return EFBIG;
}

/// @return errno of what went wrong, 0 for nothing
int readAll(const std::string &path, std::string &text)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        return errno;
    const int reason = readToTheEnd(descriptor, text);
    close(descriptor);
    return reason;
}

} // namespace

std::optional<std::string> readTextFile(const std::string &path, std::string *error)
{
    std::string text;
    const int reason = readAll(path, text);
    if (reason == 0)
        return text;
    *error = path + ": " + std::generic_category().message(reason);
    return std::nullopt;
}

} // namespace dx4::sim
