// SPDX-License-Identifier: MIT
// A line in memory: a function answers, and time passes only when somebody waits.
#include "host/line/memory_line.h"

#include "host/base/length.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace dx4::host {

MemoryLine::MemoryLine(Responder responder, const LineSettings &settings)
    : m_responder(std::move(responder))
    , m_settings(settings)
    , m_lastActivity(-settings.silentGap())
{
    if (!m_responder)
        throw std::invalid_argument("a line in memory without a responder; where nobody is to "
                                    "answer, hand over one that gives an empty Answer");
}

bool MemoryLine::open(QString *error)
{
    m_open = m_pluggedIn;
    if (!m_open && error)
        *error = QStringLiteral("memory line: unplugged");
    return m_open;
}

void MemoryLine::close()
{
    m_open = false;
    m_arrivals.clear();
}

bool MemoryLine::send(const QByteArray &bytes)
{
    if (!m_open)
        return false;
    m_sent.append(bytes);
    const Duration end = m_now + m_settings.wireTime(lengthOf(bytes));
    const bool isLost = m_collides && dropArrivalsUntil(end);
    m_now = end;
    m_lastActivity = m_now;
    if (isLost)
        return true;
    const Answer answer = m_responder(bytes);
    schedule(answer.bytes, m_now + answer.delay);
    return m_open;
}

QByteArray MemoryLine::receive(int count, Duration deadline)
{
    QByteArray received;
    while (m_open && received.size() < count && !m_arrivals.empty()
           && m_arrivals.front().at <= deadline) {
        m_now = std::max(m_now, m_arrivals.front().at);
        m_lastActivity = m_arrivals.front().at;
        received.append(m_arrivals.front().byte);
        m_arrivals.pop_front();
    }
    if (m_open && received.size() < count)
        m_now = std::max(m_now, deadline);
    return received;
}

int MemoryLine::discardInput()
{
    int dropped = 0;
    while (!m_arrivals.empty() && m_arrivals.front().at <= m_now) {
        m_lastActivity = m_arrivals.front().at;
        m_arrivals.pop_front();
        ++dropped;
    }
    return dropped;
}

bool MemoryLine::awaitSilence(Duration gap, Duration deadline)
{
    discardInput();
    while (!m_arrivals.empty() && m_arrivals.front().at < m_lastActivity + gap
           && m_arrivals.front().at <= deadline) {
        m_now = std::max(m_now, m_arrivals.front().at);
        discardInput();
    }
    const Duration silentAt = m_lastActivity + gap;
    m_now = std::max(m_now, std::min(silentAt, deadline));
    return silentAt <= m_now;
}

void MemoryLine::inject(const QByteArray &bytes, Duration delay)
{
    schedule(bytes, m_now + delay);
}

void MemoryLine::unplug()
{
    m_pluggedIn = false;
    close();
}

void MemoryLine::plugIn()
{
    m_pluggedIn = true;
}

/// @return whether there was one to drop
bool MemoryLine::dropArrivalsUntil(Duration end)
{
    const auto isHit = [this, end](const Arrival &arrival) {
        return arrival.at > m_now && arrival.at <= end;
    };
    const auto kept = std::remove_if(m_arrivals.begin(), m_arrivals.end(), isHit);
    const bool isAny = kept != m_arrivals.end();
    m_arrivals.erase(kept, m_arrivals.end());
    return isAny;
}

void MemoryLine::schedule(const QByteArray &bytes, Duration start)
{
    for (int i = 0; i < bytes.size(); ++i)
        m_arrivals.push_back({ start + m_settings.wireTime(i + 1), bytes.at(i) });
    std::stable_sort(m_arrivals.begin(), m_arrivals.end(),
                     [](const Arrival &a, const Arrival &b) { return a.at < b.at; });
}

} // namespace dx4::host
