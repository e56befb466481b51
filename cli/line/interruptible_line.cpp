// SPDX-License-Identifier: MIT
// A line whose waits end when the program is asked to end.
#include "cli/line/interruptible_line.h"

#include "cli/console/interrupt.h"
#include "host/base/length.h"

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr host::Duration lookAgainAfter = std::chrono::milliseconds(50);
constexpr host::Duration lastWait = std::chrono::milliseconds(300);

} // namespace

QByteArray InterruptibleLine::receive(int count, host::Duration deadline)
{
    QByteArray received;
    while (true) {
        if (!m_inFull && !m_askedAt && shouldEnd())
            m_askedAt = m_line.now();
        const bool isHurried = m_askedAt && !m_inFull;
        const host::Duration end = isHurried
            ? std::min(deadline, *m_askedAt + (quitAsked() ? host::Duration { 0 } : lastWait))
            : deadline;
        const host::Duration look = std::min(end, m_line.now() + lookAgainAfter);
        received += m_line.receive(count - host::lengthOf(received), look);
        if (received.size() >= count || !m_line.isOpen() || m_line.now() >= end)
            return received;
    }
}

} // namespace dx4::cli
