// SPDX-License-Identifier: MIT
// All watched values at equal times, for spreadsheets.
#pragma once

#include "cli/commands/watch_view.h"

namespace dx4::cli {

/// A row with a column per register, or an object, for every moment that the style asks for.
///
/// Moments are counted from the start and do not drift. One that passes while a request is on the
/// line shows what is known when the request has ended. A value that is not known, failed or is
/// stale has an empty cell, or null: nobody shall draw a curve through it.
std::unique_ptr<WatchView> sampleView(const WatchStyle &style, const QVector<WatchRow> &values);

} // namespace dx4::cli
