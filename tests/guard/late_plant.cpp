// SPDX-License-Identifier: MIT
// Late stations on a line in virtual time.
#include "late_plant.h"

#include <algorithm>

using dx4::host::Duration;

LatePlant::LatePlant(const dx4::host::LineSettings &settings, const LineHabit &line, Chance &chance)
    : m_settings(settings)
    , m_stations(settings, line, chance)
{
}

void LatePlant::toggle(int station)
{
    m_stations.setOff(station, !m_stations.habitOf(station).isOff, m_now);
}

bool LatePlant::open(QString *)
{
    m_open = true;
    return true;
}

bool LatePlant::send(const QByteArray &bytes)
{
    if (!m_open)
        return false;
    m_now += m_settings.wireTime(static_cast<int>(bytes.size()));
    m_stations.hear(bytes, m_now);
    return true;
}

QByteArray LatePlant::receive(int count, Duration deadline)
{
    QByteArray received;
    while (m_open && received.size() < count) {
        const auto next = m_stations.nextBy(deadline);
        if (!next)
            break;
        m_now = std::max(m_now, next->at);
        received.append(next->byte);
        m_stations.takeNext();
    }
    if (m_open && received.size() < count)
        m_now = std::max(m_now, deadline);
    return received;
}

int LatePlant::discardInput()
{
    return static_cast<int>(receive(100000, m_now).size());
}

bool LatePlant::awaitSilence(Duration gap, Duration deadline)
{
    while (m_now < deadline) {
        if (receive(100000, std::min(m_now + gap, deadline)).isEmpty())
            return true;
    }
    return false;
}
