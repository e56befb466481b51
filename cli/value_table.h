// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#pragma once

#include "cli/terminal.h"
#include "cli/watch_list.h"

#include <QStringList>

#include <limits>

namespace dx4::cli {

/// The table's head and one line per row, with what the value says below it where that is known,
/// each at most as wide as the terminal and 80 columns: station, name, both forms of the address,
/// value with unit, age. A value that changed within the last second is marked, with "*" where
/// there is no colour; one whose last read failed says so; the age of one that is stale carries
/// "!".
///
/// Where it is narrow, address and age go first, then the name gets shorter. Without its column the
/// address stands in for a name that a register does not have, and "!" before the value.
///
/// @param now   the line's clock
/// @param most  lines; the last one tells of the rows that have no room
QStringList tableLines(const QVector<WatchRow> &rows, host::Duration now, const Terminal &terminal,
                       int most = std::numeric_limits<int>::max());

} // namespace dx4::cli
