// SPDX-License-Identifier: MIT
// What a register was in one span of time.
#pragma once

#include <QtGlobal>

#include <vector>

namespace dx4::panel {

/// Milliseconds since 1970, UTC, on a clock that never steps: the time of day when the recording
/// began, and what the steady clock counted since.
using Moment = qint64;

/// How far the values of a column may be trusted.
enum class ColumnQuality : quint8 {
    None, ///< nothing is known of it
    Good,
    Failed, ///< a read of it was given up
};

/// Lowest, highest and last in the counts of the register, so that a day of many registers fits
/// into memory.
struct Column {
    quint16 lowest = 0; ///< of bits: those that were set all the time
    quint16 highest = 0; ///< of bits: those that were set at some time
    quint16 last = 0;
    quint16 count = 0; ///< changes that came; stays at its highest
    ColumnQuality quality = ColumnQuality::None; ///< the worst
    bool hasGap = false; ///< at some time in it nothing was known

    bool isKnown() const { return quality != ColumnQuality::None; }
};

/// Columns side by side.
struct ColumnRun {
    Moment begin = 0; ///< of the first one
    Moment width = 1; ///< of each, ms
    std::vector<Column> columns;

    Moment beginOf(std::size_t index) const { return begin + static_cast<Moment>(index) * width; }
};

/// How the counts of a register are put together.
enum class Counts {
    Unsigned,
    Signed,
    Bits,
};

} // namespace dx4::panel
