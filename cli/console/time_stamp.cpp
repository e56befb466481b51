// SPDX-License-Identifier: MIT
// When something happened, as seconds since the start or as a time of day.
#include "cli/console/time_stamp.h"

#include <QDateTime>

#include <cstdlib>

namespace dx4::cli {

double inSeconds(host::Duration span)
{
    return std::chrono::duration<double>(span).count();
}

QString secondsText(host::Duration span)
{
    return QStringLiteral("%1 s").arg(inSeconds(span), 5, 'f', 1);
}

QString clockText(host::Duration ago)
{
    const QDateTime time =
        QDateTime::currentDateTime().addMSecs(-(ago / std::chrono::milliseconds(1)));
    const int minutes = time.offsetFromUtc() / 60;
    return time.toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss.zzz"))
        + QStringLiteral("%1%2:%3")
              .arg(minutes < 0 ? QLatin1Char('-') : QLatin1Char('+'))
              .arg(std::abs(minutes) / 60, 2, 10, QLatin1Char('0'))
              .arg(std::abs(minutes) % 60, 2, 10, QLatin1Char('0'));
}

QString TimeStamp::text(host::Duration elapsed) const
{
    return m_clock ? clockText(m_now - elapsed) : QString::number(inSeconds(elapsed), 'f', 3);
}

QString TimeStamp::column(host::Duration elapsed) const
{
    return m_clock ? text(elapsed) : text(elapsed).rightJustified(8) + QStringLiteral(" s");
}

Facts TimeStamp::facts(host::Duration elapsed) const
{
    return { { "time", inSeconds(elapsed) }, { "clock", valueIf(m_clock, text(elapsed)) } };
}

} // namespace dx4::cli
