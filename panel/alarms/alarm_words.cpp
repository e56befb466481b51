// SPDX-License-Identifier: MIT
// Alarms and events in words.
#include "panel/alarms/alarm_words.h"

#include <QDateTime>
#include <QStringList>

#include <utility>

namespace dx4::panel {
namespace {

QDateTime local(journal::Time time)
{
    return QDateTime::fromMSecsSinceEpoch(time);
}

} // namespace

AlarmWords::AlarmWords(const host::Config &config)
    : m_faults(config.faults)
{
    for (const host::StationConfig &station : std::as_const(config.stations)) {
        if (!station.name.isEmpty())
            m_drives.insert(station.address, station.name);
    }
}

QString AlarmWords::drive(int station) const
{
    return m_drives.value(station, tr("Station %1").arg(station));
}

QString AlarmWords::heading(const Alarm &alarm) const
{
    const AlarmKey &key = alarm.key;
    const QString number = tr("fault %1").arg(key.code);
    switch (key.kind) {
    case AlarmKind::Fault:
        return tr("%1: %2").arg(drive(key.station), m_faults.value(key.code, number));
    case AlarmKind::Station:
        return tr("%1 does not answer").arg(drive(key.station));
    case AlarmKind::Line:
        return tr("The line is down: %1").arg(alarm.reason);
    case AlarmKind::Stop:
        return tr("A stop was not confirmed. A motor may still run!");
    case AlarmKind::Message:
        return alarm.reason;
    case AlarmKind::Journal:
        return tr("The journal cannot be written");
    }
    return {};
}

QString AlarmWords::fullText(const Alarm &alarm) const
{
    const bool isToldTwice =
        alarm.key.kind == AlarmKind::Message || alarm.key.kind == AlarmKind::Line;
    if (alarm.key.kind == AlarmKind::Fault)
        return tr("%1 (fault code %2, station %3)")
            .arg(heading(alarm))
            .arg(alarm.key.code)
            .arg(alarm.key.station);
    if (alarm.key.kind == AlarmKind::Station)
        return tr("%1 (station %2)").arg(heading(alarm)).arg(alarm.key.station);
    return isToldTwice || alarm.reason.isEmpty()
        ? heading(alarm)
        : QStringLiteral("%1\n%2").arg(heading(alarm), alarm.reason);
}

QString AlarmWords::stateText(AlarmState state)
{
    switch (state) {
    case AlarmState::Normal:
        return tr("over");
    case AlarmState::Active:
        return tr("active, not acknowledged");
    case AlarmState::Acknowledged:
        return tr("active, acknowledged");
    case AlarmState::Returned:
        return tr("over, not acknowledged");
    }
    return {};
}

QString AlarmWords::detail(const Alarm &alarm)
{
    QStringList parts { stateText(alarm.state) };
    const bool isLasting = alarm.key.kind != AlarmKind::Message;
    if (!isLasting)
        parts = QStringList { tr("message, not acknowledged") };
    if (alarm.count > 1)
        parts.append(tr("came %1 times").arg(alarm.count));
    if (isLasting && alarm.returned != 0)
        parts.append(tr("went %1").arg(timeText(alarm.returned, alarm.newest)));
    return parts.join(QStringLiteral("; "));
}

QString AlarmWords::kindText(journal::EventKind kind)
{
    using journal::EventKind;
    switch (kind) {
    case EventKind::Fault:
        return tr("Fault");
    case EventKind::Write:
        return tr("Write");
    case EventKind::Parameter:
        return tr("Parameter");
    case EventKind::Alarm:
        return tr("Alarm");
    case EventKind::Notice:
        return tr("Notice");
    case EventKind::Line:
        return tr("Line");
    case EventKind::Station:
        return tr("Station");
    case EventKind::Stop:
        return tr("Stop");
    case EventKind::Journal:
        return tr("Journal");
    case EventKind::Acknowledgement:
        return tr("Acknowledged");
    }
    return {};
}

QString timeText(journal::Time time, journal::Time now)
{
    const QDateTime at = local(time);
    const bool isToday = at.date() == local(now).date();
    return at.toString(isToday ? QStringLiteral("HH:mm:ss") : QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString dateText(journal::Time time)
{
    return local(time).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace dx4::panel
