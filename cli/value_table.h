// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#pragma once

#include "cli/terminal.h"
#include "cli/watch_list.h"

#include <QStringList>

namespace dx4::cli {

/// The table's head and one line per row, each at most 80 columns wide: station, name, both forms
/// of the address, value with unit, age. A value that changed within the last second is marked,
/// with "*" where there is no colour; one whose last read failed says so; the age of one that is
/// stale carries "!".
///
/// @param now  the line's clock
QStringList tableLines(const QVector<WatchRow> &rows, host::Duration now, const Terminal &terminal);

} // namespace dx4::cli
