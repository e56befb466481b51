// SPDX-License-Identifier: MIT
// Values under watch: what they are called, what they show, how old that is.
#include "cli/watch_list.h"

namespace dx4::cli {

bool isDescribed(const WatchedValue &what)
{
    const host::Scaling &scaling = what.scaling;
    return what.bits || !what.name.isEmpty() || !scaling.unit.isEmpty() || scaling.isSigned
        || scaling.factor != 1.0 || scaling.offset != 0.0 || scaling.decimals != 0;
}

QString formatValue(const WatchedValue &what, quint16 value)
{
    if (what.bits)
        return QStringLiteral("0x%1").arg(
            QString::number(value, 16).toUpper().rightJustified(4, QLatin1Char('0')));
    return QString::number(what.scaling.quantity(value), 'f', what.scaling.decimals);
}

QString quantityText(const WatchedValue &what, quint16 value)
{
    const QString number = formatValue(what, value);
    const QString &unit = what.scaling.unit;
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}

WatchList::WatchList(const QVector<WatchedValue> &values)
{
    for (const WatchedValue &value : values)
        m_rows.append({ value, {}, {} });
}

void WatchList::follow(const host::Runtime &runtime, host::Duration now)
{
    for (WatchRow &row : m_rows) {
        const host::Value before = row.state;
        row.state = runtime.value(row.what.station, row.what.regType, row.what.address);
        if (before.known && row.state.value != before.value)
            row.changedAt = now;
    }
}

} // namespace dx4::cli
