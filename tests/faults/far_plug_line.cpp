// SPDX-License-Identifier: MIT
// The simulator's cable as a line of the host: in memory, on a clock that moves only when somebody
// waits.
#include "far_plug_line.h"

#include "host/base/length.h"

#include <algorithm>
#include <optional>

namespace dx4::faults {

using host::Duration;

FarPlugLine::FarPlugLine(sim::Cable &cable, sim::VirtualClock &clock,
                         const host::LineSettings &settings)
    : m_cable(cable)
    , m_clock(clock)
    , m_settings(settings)
    , m_lastActivity(-settings.silentGap())
{
}

bool FarPlugLine::send(const QByteArray &bytes)
{
    m_cable.send(sim::Bytes(bytes.begin(), bytes.end()));
    m_lastActivity = now() + m_settings.wireTime(host::lengthOf(bytes));
    return true;
}

QByteArray FarPlugLine::receive(int count, Duration deadline)
{
    takeArrived();
    while (m_input.size() < count) {
        const std::optional<sim::Micros> next = m_cable.nextByteAt();
        if (!next || *next > deadline) {
            m_clock.advanceTo(deadline);
            break;
        }
        m_clock.advanceTo(*next);
        takeArrived();
    }
    const QByteArray received = m_input.left(count);
    m_input.remove(0, count);
    return received;
}

int FarPlugLine::discardInput()
{
    takeArrived();
    const int dropped = host::lengthOf(m_input);
    m_input.clear();
    return dropped;
}

bool FarPlugLine::awaitSilence(Duration gap, Duration deadline)
{
    discardInput();
    for (std::optional<sim::Micros> next;
         (next = m_cable.nextByteAt()) && *next < m_lastActivity + gap && *next <= deadline;) {
        m_clock.advanceTo(*next);
        discardInput();
    }
    const Duration silentAt = m_lastActivity + gap;
    m_clock.advanceTo(std::min(silentAt, deadline));
    return silentAt <= now();
}

void FarPlugLine::takeArrived()
{
    const sim::Bytes arrived = m_cable.receive();
    if (arrived.empty())
        return;
    m_lastActivity = std::max(m_lastActivity, now());
    m_input.append(reinterpret_cast<const char *>(arrived.data()),
                   static_cast<int>(arrived.size()));
}

} // namespace dx4::faults
