// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#pragma once

#include "cli/terminal.h"
#include "cli/watch_list.h"

#include <QStringList>

namespace dx4::cli {

/// The table's head and one line per row, each at most 80 columns wide: station, name, both forms
/// of the address, value with unit, age. A value that changed within the last second is marked,
/// one whose last read failed says so.
///
/// @param now  the line's clock, to which ages are counted
QStringList tableLines(const QVector<WatchRow> &rows, host::Duration now, const Terminal &terminal);

} // namespace dx4::cli
