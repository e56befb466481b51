// SPDX-License-Identifier: MIT
// A pause that another thread can end.
#include "host/service/doorbell.h"

#include <cstdint>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace dx4::host {

Doorbell::Doorbell(Waits &waits)
    : m_waits(waits)
    , m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")
{
}

void Doorbell::ring()
{
    const std::uint64_t one = 1;
    // It fails where the counter is full, and who waits is awake then.
    [[maybe_unused]] const auto written = write(m_descriptor.number(), &one, sizeof one);
}

bool Doorbell::wait(Duration span)
{
    m_waits.forEvents(m_descriptor.number(), POLLIN, steadyNow() + span);
    std::uint64_t rings = 0;
    return read(m_descriptor.number(), &rings, sizeof rings) == sizeof rings;
}

} // namespace dx4::host
