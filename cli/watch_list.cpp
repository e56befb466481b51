// SPDX-License-Identifier: MIT
// Values under watch: what they are called, what they show, how old that is.
#include "cli/watch_list.h"

namespace dx4::cli {
namespace {

bool covers(const VARIABLE &request, const WatchedValue &value)
{
    return request.station == value.station && request.regType == value.regType
        && value.address >= request.address && value.address < request.address + request.count;
}

double powerOfTen(int digits)
{
    double power = 1.0;
    for (int i = 0; i < digits; ++i)
        power *= 10.0;
    return power;
}

} // namespace

QString formatValue(const WatchedValue &what, quint16 value)
{
    if (what.bits)
        return QStringLiteral("0x%1").arg(
            QString::number(value, 16).toUpper().rightJustified(4, QLatin1Char('0')));
    return QString::number(value / powerOfTen(what.decimals), 'f', what.decimals);
}

WatchList::WatchList(const QVector<WatchedValue> &values)
{
    for (const WatchedValue &value : values)
        m_rows.append({ value, {}, {}, {} });
}

QList<KEY_ADDRESS> WatchList::addresses() const
{
    QList<KEY_ADDRESS> addresses;
    for (const WatchRow &row : m_rows)
        addresses.append(host::wanted(row.what.station, row.what.regType, row.what.address));
    return addresses;
}

void WatchList::follow(const host::Link &link, const host::Cycle &cycle, host::Cycle::Step step,
                       host::Duration now)
{
    for (WatchRow &row : m_rows) {
        const quint16 before = row.state.value;
        row.state = link.registerState(row.what.station, row.what.regType, row.what.address);
        const bool answered =
            step == host::Cycle::Step::Served && covers(cycle.request().var, row.what);
        if (row.answeredAt && row.state.value != before)
            row.changedAt = now;
        if (answered)
            row.answeredAt = now;
    }
}

} // namespace dx4::cli
