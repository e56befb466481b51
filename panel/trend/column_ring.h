// SPDX-License-Identifier: MIT
// The newest columns of one width.
#pragma once

#include "panel/trend/column.h"

namespace dx4::panel {

/// Holds so many columns and no more; the oldest goes first. Its memory is taken at once and never
/// grows.
class ColumnRing {
public:
    /// @param width     of a column, ms
    /// @param capacity  columns
    ColumnRing(Moment width, int capacity, Counts counts);

    Moment width() const { return m_width; }

    /// Begin of the oldest column; what is empty begins where it would.
    Moment begin() const { return m_first * m_width; }

    /// From one moment to the one before another a value stayed.
    void hold(Moment from, Moment to, quint16 value, ColumnQuality quality);

    /// From one moment to the one before another nothing was known.
    void leaveGap(Moment from, Moment to);

    /// A value came.
    void add(Moment at, quint16 value, ColumnQuality quality);

    /// Puts in a column that was made elsewhere, older than all that are here or the oldest of
    /// them.
    ///
    /// @return false where there is no room for it
    bool addPast(Moment at, const Column &past);

    /// Appends the columns that touch a window, as far as there are any.
    void read(Moment from, Moment to, ColumnRun *run) const;

    std::size_t bytes() const { return m_columns.capacity() * sizeof(Column); }

private:
    qint64 indexOf(Moment at) const;
    Column &at(qint64 index);
    const Column &at(qint64 index) const;
    Column &open(qint64 index);
    void merge(Column &column, quint16 value, ColumnQuality quality) const;
    void mergePast(Column &column, const Column &past) const;
    bool isBelow(quint16 a, quint16 b) const;

    const Moment m_width;
    const Counts m_counts;
    std::vector<Column> m_columns;
    qint64 m_first = 0; // columns from here on are held ...
    qint64 m_end = 0; // ... up to the one before this
};

} // namespace dx4::panel
