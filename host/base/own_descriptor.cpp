// SPDX-License-Identifier: MIT
// A file descriptor that is closed at its owner's end.
#include "host/base/own_descriptor.h"

#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace dx4::host {

OwnDescriptor::OwnDescriptor(int number, const char *from)
    : m_number(number)
{
    if (number < 0)
        throw std::system_error(errno, std::generic_category(), from);
}

OwnDescriptor::~OwnDescriptor()
{
    close(m_number);
}

} // namespace dx4::host
