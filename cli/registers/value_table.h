// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#pragma once

#include "cli/console/scroll_keys.h"
#include "cli/console/terminal.h"
#include "cli/registers/watch_list.h"

#include <QStringList>

#include <limits>

namespace dx4::cli {

/// The part of a table that is in the window.
struct Scroll {
    int first = 0; ///< row
    int shown = 0; ///< rows, as of the last drawing

    /// Moves it, no further than to the last row.
    ///
    /// @param count  rows of the table
    void move(const Movement &movement, int count);
};

/// The table's head and one line per row, with what the value says below it where that is known,
/// each at most as wide as the terminal and 80 columns: station, name, both forms of the address,
/// value with unit, age. A value that changed within the last second is marked, with "*" where
/// there is no colour; one whose last read failed says so; the age of one that is stale carries
/// "!".
///
/// Where it is narrow, address and age go first, then the name gets shorter. Without its column the
/// address stands in for a name that a register does not have, and "!" before the value.
///
/// Numbers stand with their points one below the other.
///
/// @param now     the line's clock
/// @param most    lines; the last one tells of the rows that have no room
/// @param scroll  rows that are shown, for a reader who can move them; null: from the first on
QStringList tableLines(const QVector<WatchRow> &rows, host::Duration now, const Terminal &terminal,
                       int most = std::numeric_limits<int>::max(), Scroll *scroll = nullptr);

} // namespace dx4::cli
