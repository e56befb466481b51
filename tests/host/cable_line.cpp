// SPDX-License-Identifier: MIT
// The host's line over the simulator's cable: real inverters, seeded faults, a clock that waits.
#include "cable_line.h"

#include "host/base/length.h"

#include <algorithm>

using dx4::host::Duration;

CableLine::CableLine(dx4::sim::Cable &cable, dx4::sim::VirtualClock &clock,
                     const dx4::host::LineSettings &settings)
    : m_cable(cable)
    , m_clock(clock)
    , m_settings(settings)
{
}

bool CableLine::open(QString *error)
{
    m_open = !m_cable.unplugged();
    if (!m_open && error)
        *error = QStringLiteral("cable: unplugged");
    return m_open;
}

bool CableLine::send(const QByteArray &bytes)
{
    m_open = m_open && !m_cable.unplugged();
    if (!m_open)
        return false;
    m_cable.send(dx4::sim::Bytes(bytes.begin(), bytes.end()));
    m_clock.advance(m_settings.wireTime(dx4::host::lengthOf(bytes)));
    m_lastActivity = m_clock.now();
    return true;
}

void CableLine::fetch()
{
    for (std::uint8_t byte : m_cable.receive()) {
        m_input.append(static_cast<char>(byte));
        m_lastActivity = m_clock.now();
    }
}

QByteArray CableLine::receive(int count, Duration deadline)
{
    fetch();
    while (m_open && m_input.size() < count) {
        const auto next = m_cable.nextByteAt();
        if (!next || *next > deadline) {
            m_clock.advanceTo(deadline);
            break;
        }
        m_clock.advanceTo(*next);
        fetch();
    }
    const QByteArray taken = m_input.left(count);
    m_input.remove(0, count);
    return taken;
}

int CableLine::discardInput()
{
    fetch();
    const int dropped = dx4::host::lengthOf(m_input);
    m_input.clear();
    return dropped;
}

bool CableLine::awaitSilence(Duration gap, Duration deadline)
{
    discardInput();
    auto next = m_cable.nextByteAt();
    while (next && *next < m_lastActivity + gap && *next <= deadline) {
        m_clock.advanceTo(*next);
        discardInput();
        next = m_cable.nextByteAt();
    }
    m_clock.advanceTo(std::min(m_lastActivity + gap, deadline));
    return m_lastActivity + gap <= m_clock.now();
}
