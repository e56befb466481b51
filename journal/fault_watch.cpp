// SPDX-License-Identifier: MIT
// Notices in what a line shows when a drive's fault comes, changes or goes.
#include "journal/fault_watch.h"

#include "register_tables.h"

#include <QStringList>

#include <utility>

namespace dx4::journal {
namespace {

constexpr int stateBits = 16;

/// Whether this is what the drive says now.
bool isCertain(const host::Value &state)
{
    return state.known && !state.stale && !state.failed;
}

} // namespace

QVector<Event> FaultWatch::see(const QVector<host::RegisterValue> &values)
{
    for (const host::RegisterValue &value : values) {
        if (value.regType == REG_LIST[TypeSw] && isCertain(value.state))
            m_states[value.station] = value.state.value;
    }
    QVector<Event> events;
    for (const host::RegisterValue &value : values) {
        if (value.regType != REG_LIST[TypeFu] || !isCertain(value.state))
            continue;
        const int code = value.state.value;
        const int before = std::exchange(m_faults[value.station], code);
        if (code == before)
            continue;
        Event event;
        event.kind = EventKind::Fault;
        event.station = value.station;
        event.regType = value.regType;
        event.address = value.address;
        event.code = code;
        event.before = before;
        event.text = faultText(value.station, code) + stateText(value.station);
        events.append(event);
    }
    return events;
}

QString FaultWatch::faultText(int station, int code) const
{
    if (code == 0)
        return QStringLiteral("station %1: no fault any more").arg(station);
    const QString word = m_words.faults.value(code);
    const QString fault = QStringLiteral("station %1: fault %2").arg(station).arg(code);
    return word.isEmpty() ? fault : QStringLiteral("%1, %2").arg(fault, word);
}

QString FaultWatch::stateText(int station) const
{
    const auto found = m_states.find(station);
    if (found == m_states.end())
        return QString();
    QStringList words;
    for (int bit = 0; bit < stateBits; ++bit) {
        const bool isSet = (found->second >> bit & 1) != 0;
        if (isSet)
            words.append(m_words.states.value(bit, QStringLiteral("bit %1").arg(bit)));
    }
    const QString word = QStringLiteral("%1").arg(found->second, 4, 16, QLatin1Char('0')).toUpper();
    return QStringLiteral("; status word 0x%1: %2")
        .arg(word,
             words.isEmpty() ? QStringLiteral("no bit set") : words.join(QStringLiteral(", ")));
}

} // namespace dx4::journal
