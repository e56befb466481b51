// SPDX-License-Identifier: MIT
// One register over time, at several zoom levels.
#pragma once

#include "panel/trend/column_ring.h"

#include <QVector>

#include <array>
#include <optional>

namespace dx4::panel {

/// Width and number of the columns of a level.
struct HistoryLevel {
    Moment width; ///< ms
    int columns;
};

/// From five minutes in tenths of a second to two days in columns of two minutes.
inline constexpr std::array<HistoryLevel, 6> historyLevels = { {
    { 100, 3'000 },
    { 500, 2'400 },
    { 2'000, 2'400 },
    { 10'000, 2'880 },
    { 30'000, 2'880 },
    { 120'000, 1'440 },
} };

/// What was kept of a span before the recording began.
struct PastRow {
    Moment at = 0; ///< its begin
    Column column;
};

/// Keeps each value at every level, so that no peak is lost at any. A value stays until another one
/// comes or it is lost; what was lost leaves a gap. Times may not descend: what comes with an
/// earlier one is put to the newest.
class RegisterHistory {
public:
    explicit RegisterHistory(Counts counts = Counts::Unsigned);

    /// A value was read.
    void note(Moment at, quint16 value, bool failed = false);

    /// From then on the value is too old to be shown, or was never known.
    void lose(Moment at);

    /// The value that stays; none: nothing is known.
    std::optional<quint16> value() const;

    /// Takes what was kept before the recording began, oldest first.
    ///
    /// @param level     that takes it; its columns are at least as wide as the rows
    /// @param rowWidth  ms
    void addPast(std::size_t level, Moment rowWidth, const QVector<PastRow> &rows);

    /// The finest level of which a window has no more than `most` columns, or a coarser one that
    /// reaches further back into the window.
    std::size_t levelFor(Moment from, Moment to, Moment now, int most);

    /// The columns of a window, as far as there are any, up to now.
    void read(std::size_t level, Moment from, Moment to, Moment now, ColumnRun *run);

    std::size_t bytes() const;

private:
    void fillTo(Moment at);

    std::vector<ColumnRing> m_levels;
    std::optional<Moment> m_upTo; // filled up to here; none: nothing came yet
    bool m_isKnown = false;
    quint16 m_value = 0;
    ColumnQuality m_quality = ColumnQuality::Good;
};

} // namespace dx4::panel
