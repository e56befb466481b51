// SPDX-License-Identifier: MIT
// Which span of time is looked at.
#include "panel/trend/time_window.h"

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr Moment furthestBack = 36LL * 3600 * 1000; // ms, of the end of the window

} // namespace

void TimeWindow::place(Moment to, Moment now)
{
    // A window around a trigger may end in the future already.
    m_to = std::clamp(to, now - furthestBack, std::max(now, m_to));
    m_isLive = false;
}

void TimeWindow::setSpan(Moment span, Moment now)
{
    const Moment wanted = std::clamp(span, shortest, longest);
    const Moment middle = to(now) - m_span / 2;
    m_span = wanted;
    if (!m_isLive)
        m_to = middle + wanted / 2;
}

void TimeWindow::pause(Moment now)
{
    m_to = to(now);
    m_isLive = false;
}

void TimeWindow::pan(Moment by, Moment now)
{
    pause(now);
    place(m_to + by, now);
}

void TimeWindow::zoom(double factor, Moment around, Moment now)
{
    const Moment end = to(now);
    const auto wanted = static_cast<Moment>(static_cast<double>(m_span) * factor);
    const Moment span = std::clamp(wanted, shortest, longest);
    const double part = static_cast<double>(span) / static_cast<double>(m_span);
    m_span = span;
    if (m_isLive)
        return;
    m_to = around + static_cast<Moment>(static_cast<double>(end - around) * part);
}

void TimeWindow::centre(Moment at)
{
    m_to = at + m_span / 2;
    m_isLive = false;
}

} // namespace dx4::panel
