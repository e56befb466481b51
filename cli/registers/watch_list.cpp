// SPDX-License-Identifier: MIT
// Values under watch: what they are called, what they show, how old that is.
#include "cli/registers/watch_list.h"

#include "host/base/length.h"

#include <QStringList>

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr int rowsInTurn = 64;

} // namespace

bool isDescribed(const WatchedValue &what)
{
    return what.bits || !what.words.isEmpty() || isNamedOrScaled(what);
}

bool isNamedOrScaled(const WatchedValue &what)
{
    const host::Scaling &scaling = what.scaling;
    return !what.name.isEmpty() || !scaling.unit.isEmpty() || scaling.isSigned
        || scaling.factor != 1.0 || scaling.offset != 0.0 || scaling.decimals != 0;
}

QString formatValue(const WatchedValue &what, quint32 value)
{
    if (what.pair.kind != Pair::Kind::None) {
        const host::Scaling &scaling = what.scaling;
        const bool isPlain =
            scaling.factor == 1.0 && scaling.offset == 0.0 && scaling.decimals == 0;
        const double quantity = what.pair.quantity(value) * scaling.factor + scaling.offset;
        return isPlain ? what.pair.text(value) : QString::number(quantity, 'f', scaling.decimals);
    }
    if (what.bits)
        return filled("0x%1",
                      QString::number(value, 16).toUpper().rightJustified(4, QLatin1Char('0')));
    return QString::number(what.scaling.quantity(static_cast<quint16>(value)), 'f',
                           what.scaling.decimals);
}

QString quantityText(const WatchedValue &what, quint32 value)
{
    const QString number = formatValue(what, value);
    const QString &unit = what.scaling.unit;
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}

QString meaningText(const WatchedValue &what, quint32 value)
{
    if (what.pair.kind != Pair::Kind::None)
        return QString();
    if (what.words.isEmpty() || !what.bits)
        return what.words.value(static_cast<int>(value));
    QStringList said;
    for (int bit = 0; bit < 16; ++bit) {
        if ((value >> bit) & 1)
            said.append(what.words.value(bit, filled("bit %1", bit)));
    }
    return said.join(QStringLiteral(", "));
}

WatchList::WatchList(const QVector<WatchedValue> &values, const host::Runtime &runtime)
    : m_runtime(runtime)
{
    m_rows.reserve(values.size());
    for (const WatchedValue &value : values) {
        for (int i = 0; i < value.pair.length(); ++i)
            m_places[{ value.station, value.regType }].emplace(value.address + i,
                                                               host::lengthOf(m_rows));
        m_rows.append({ value, {}, {}, 0 });
    }
}

void WatchList::follow(host::Duration now)
{
    const int rows = host::lengthOf(m_rows);
    if (rows > rowsInTurn)
        lookAtRequest(now);
    const int count = std::min(rows, rowsInTurn);
    for (int i = 0; i < count; ++i) {
        m_next = m_next % rows;
        lookAt(m_next++, now);
    }
}

void WatchList::look(int first, int count, host::Duration now)
{
    const int end = std::min(first + count, host::lengthOf(m_rows));
    for (int row = first; row < end; ++row)
        lookAt(row, now);
}

void WatchList::lookAtAll(host::Duration now)
{
    look(0, host::lengthOf(m_rows), now);
}

QVector<int> WatchList::takeChanged()
{
    return std::exchange(m_changed, {});
}

/// The registers that the last request was about.
void WatchList::lookAtRequest(host::Duration now)
{
    const VARIABLE &asked = m_runtime.cycle().request().var;
    const auto run = m_places.find({ asked.station, asked.regType });
    if (run == m_places.end())
        return;
    const auto end = run->second.lower_bound(asked.address + asked.count);
    for (auto place = run->second.lower_bound(asked.address); place != end; ++place)
        lookAt(place->second, now);
}

void WatchList::lookAt(int row, host::Duration now)
{
    WatchRow &shown = m_rows[row];
    const host::Value before = shown.state;
    const quint32 numberBefore = shown.number();
    shown.state = m_runtime.value(shown.what.station, shown.what.regType, shown.what.address);
    if (shown.what.pair.kind != Pair::Kind::None)
        lookAtSecond(shown);
    const host::Value &state = shown.state;
    const bool isOther = shown.number() != numberBefore;
    if (before.known && isOther)
        shown.changedAt = now;
    if (isOther || state.known != before.known || state.failed != before.failed
        || state.stale != before.stale)
        m_changed.append(row);
}

/// What holds for one half of a pair holds for the whole.
void WatchList::lookAtSecond(WatchRow &row) const
{
    const host::Value second =
        m_runtime.value(row.what.station, row.what.regType, row.what.address + 1);
    row.second = second.value;
    host::Value &state = row.state;
    state.known = state.known && second.known;
    state.failed = state.failed || second.failed;
    state.stale = state.stale || second.stale;
    state.writePending = state.writePending || second.writePending;
    state.age = std::max(state.age, second.age);
}

} // namespace dx4::cli
