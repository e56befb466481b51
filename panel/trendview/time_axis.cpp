// SPDX-License-Identifier: MIT
// The labels below the plot.
#include "panel/trendview/time_axis.h"

#include <QDateTime>
#include <QLocale>

#include <qwt_text.h>

namespace dx4::panel {
namespace {

constexpr Moment minute = 60'000; // ms

} // namespace

void TimeAxis::show(const TimeTicks &ticks, Moment from, Moment to, Moment shift, Moment margin)
{
    m_ticks = ticks;
    m_from = from + margin;
    m_to = to - margin;
    m_shift = shift;
    invalidateCache();
}

QwtText TimeAxis::label(double value) const
{
    const auto at = static_cast<Moment>(value);
    if (at < m_from || at > m_to)
        return {};
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(at + m_shift);
    const bool isMidnight = time.time().msecsSinceStartOfDay() == 0;
    if (isMidnight && m_ticks.step >= minute)
        return QLocale().toString(time.date(), QStringLiteral("d MMM"));
    const QString format =
        m_ticks.step < minute ? QStringLiteral("HH:mm:ss") : QStringLiteral("HH:mm");
    return time.toString(format);
}

} // namespace dx4::panel
