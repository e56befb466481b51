// SPDX-License-Identifier: MIT
// What a list of alarms or events shows of each row.
#pragma once

#include <Qt>

namespace dx4::panel {

/// What stands in front of a row: told by shape, so that no colour is needed to see it.
enum class RowMark {
    None,
    Alert, ///< filled triangle: active and unacknowledged
    Seen, ///< triangle in outline: active and acknowledged
    Over, ///< ring: it went, and nobody has acknowledged it
};

/// Qt::DisplayRole is the heading.
enum RowRole {
    DetailRole = Qt::UserRole, ///< below the heading
    TimeRole, ///< at the right
    MarkRole, ///< a RowMark as int
    FullTextRole, ///< all of it, for a sheet and for screen readers
};

} // namespace dx4::panel
