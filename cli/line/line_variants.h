// SPDX-License-Identifier: MIT
// Several settings of one line, to be tried in turn.
#pragma once

#include "cli/console/exit_code.h"
#include "host/line/line_settings.h"

#include <QVector>

#include <optional>

namespace dx4::cli {

/// What a user wants to have tried.
struct LineVariants {
    QString speeds; ///< between commas; empty: the line's own
    QString parities; ///< the same
    bool all = false; ///< the usual speeds and all parities

    bool areGiven() const { return all || !speeds.isEmpty() || !parities.isEmpty(); }
};

/// The line with each speed and each parity. A byte with parity has one stop bit.
std::optional<QVector<host::LineSettings>> variantsOf(const host::LineSettings &line,
                                                      const LineVariants &wanted, Failure *failure);

} // namespace dx4::cli
