// SPDX-License-Identifier: MIT
// What a window shows as a table for other programs.
#pragma once

#include "panel/trend/trace_reading.h"

class QIODevice;

namespace dx4::panel {

/// Writes a line for each column that at least one trace knows: its begin as
/// "2026-03-01T14:05:09.250Z", and of each trace lowest, highest, last, changes and quality
/// ("good", "failed", with "+gap" where nothing was known for a part of it). Cells of what is not
/// known stay empty. UTF-8, with points as decimal marks.
///
/// @param traces  of one level
/// @param shift   of the time of day ahead of the moments, ms
/// @param error   out: why not; may be null
bool writeTrendCsv(const QVector<TraceReading> &traces, Moment shift, QIODevice &to,
                   QString *error);

} // namespace dx4::panel
