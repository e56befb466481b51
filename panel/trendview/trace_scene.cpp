// SPDX-License-Identifier: MIT
// All that the view draws.
#include "panel/trendview/trace_scene.h"

#include <QDateTime>

#include <cstdlib>

namespace dx4::panel {
namespace {

constexpr Moment minute = 60'000; // ms
constexpr int perMinute = 60;

QString twoDigits(Moment number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

} // namespace

QString timeText(Moment at, Moment shift, bool isFine)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(at + shift);
    const QString seconds = time.toString(QStringLiteral("HH:mm:ss"));
    if (!isFine)
        return seconds;
    return seconds + QLocale().decimalPoint() + QString::number(time.time().msec() / 100);
}

QString spanText(Moment span)
{
    const QString sign = span < 0 ? QStringLiteral("-") : QString();
    const Moment size = std::abs(span);
    if (size < minute) {
        QLocale locale;
        return sign + locale.toString(static_cast<double>(size) / 1000.0, 'f', 1)
            + QStringLiteral(" s");
    }
    const Moment seconds = size / 1000;
    const Moment minutes = seconds / perMinute;
    const QString rest = QLatin1Char(':') + twoDigits(seconds % perMinute);
    if (minutes < perMinute)
        return sign + QString::number(minutes) + rest;
    return sign + QString::number(minutes / perMinute) + QLatin1Char(':')
        + twoDigits(minutes % perMinute) + rest;
}

} // namespace dx4::panel
