// SPDX-License-Identifier: MIT
// The newest columns of one width.
#include "panel/trend/column_ring.h"

#include <algorithm>
#include <limits>

namespace dx4::panel {
namespace {

quint16 sumOf(quint16 a, quint16 b)
{
    constexpr int most = std::numeric_limits<quint16>::max();
    return static_cast<quint16>(std::min(most, a + b));
}

} // namespace

ColumnRing::ColumnRing(Moment width, int capacity, Counts counts)
    : m_width(width)
    , m_counts(counts)
    , m_columns(static_cast<std::size_t>(capacity))
{
}

qint64 ColumnRing::indexOf(Moment at) const
{
    return at / m_width;
}

Column &ColumnRing::at(qint64 index)
{
    return m_columns[static_cast<std::size_t>(index) % m_columns.size()];
}

const Column &ColumnRing::at(qint64 index) const
{
    return m_columns[static_cast<std::size_t>(index) % m_columns.size()];
}

/// The column, made new with all up to it where it is newer than the newest.
Column &ColumnRing::open(qint64 index)
{
    const auto capacity = static_cast<qint64>(m_columns.size());
    if (m_first == m_end) {
        m_first = index;
        m_end = index;
    }
    for (m_end = std::max(m_end, index + 1 - capacity); m_end <= index; ++m_end)
        at(m_end) = {};
    m_first = std::max(m_first, m_end - capacity);
    return at(std::max(index, m_first));
}

bool ColumnRing::isBelow(quint16 a, quint16 b) const
{
    if (m_counts == Counts::Signed)
        return static_cast<qint16>(a) < static_cast<qint16>(b);
    return a < b;
}

void ColumnRing::merge(Column &column, quint16 value, ColumnQuality quality) const
{
    mergePast(column, { value, value, value, 0, quality, false });
}

void ColumnRing::mergePast(Column &column, const Column &past) const
{
    const bool wasKnown = column.isKnown();
    const bool isBits = m_counts == Counts::Bits;
    column.hasGap = column.hasGap || past.hasGap;
    if (!past.isKnown())
        return;
    if (!wasKnown || (!isBits && isBelow(past.lowest, column.lowest)))
        column.lowest = past.lowest;
    else if (isBits)
        column.lowest &= past.lowest;
    if (!wasKnown || (!isBits && isBelow(column.highest, past.highest)))
        column.highest = past.highest;
    else if (isBits)
        column.highest |= past.highest;
    column.last = past.last;
    column.count = sumOf(column.count, past.count);
    column.quality = std::max(column.quality, past.quality);
}

void ColumnRing::hold(Moment from, Moment to, quint16 value, ColumnQuality quality)
{
    if (to <= from)
        return;
    const qint64 last = indexOf(to - 1);
    const auto capacity = static_cast<qint64>(m_columns.size());
    for (qint64 index = std::max(indexOf(from), last + 1 - capacity); index <= last; ++index)
        merge(open(index), value, quality);
}

void ColumnRing::leaveGap(Moment from, Moment to)
{
    if (to <= from)
        return;
    const qint64 last = indexOf(to - 1);
    const auto capacity = static_cast<qint64>(m_columns.size());
    for (qint64 index = std::max(indexOf(from), last + 1 - capacity); index <= last; ++index)
        open(index).hasGap = true;
}

void ColumnRing::add(Moment at, quint16 value, ColumnQuality quality)
{
    Column &column = open(indexOf(at));
    merge(column, value, quality);
    column.count = sumOf(column.count, 1);
}

bool ColumnRing::addPast(Moment at, const Column &past)
{
    const qint64 index = indexOf(at);
    const auto capacity = static_cast<qint64>(m_columns.size());
    if (m_first == m_end) {
        m_first = index + 1;
        m_end = m_first;
    }
    if (index > m_first || m_end - index > capacity)
        return false;
    while (m_first > index)
        this->at(--m_first) = { 0, 0, 0, 0, ColumnQuality::None, true };
    Column &column = this->at(index);
    const quint16 newest = column.last;
    const bool wasKnown = column.isKnown();
    if (!wasKnown && past.isKnown())
        column.hasGap = past.hasGap;
    mergePast(column, past);
    if (wasKnown)
        column.last = newest;
    return true;
}

void ColumnRing::read(Moment from, Moment to, ColumnRun *run) const
{
    const qint64 first = std::max(m_first, indexOf(from));
    const qint64 end = std::min(m_end, indexOf(to - 1) + 1);
    run->width = m_width;
    run->begin = first * m_width;
    for (qint64 index = first; index < end; ++index)
        run->columns.push_back(at(index));
}

} // namespace dx4::panel
