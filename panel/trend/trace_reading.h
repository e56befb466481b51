// SPDX-License-Identifier: MIT
// What a window shows of one register.
#pragma once

#include "panel/trend/trace_key.h"

#include <QLocale>
#include <QVector>

#include <optional>
#include <utility>

namespace dx4::panel {

/// The columns of a register, or of one bit of it, with what they are called.
struct TraceReading {
    TraceChoice choice;
    QString drive;
    QString name;
    host::Scaling scaling;
    ColumnRun run;

    bool isBit() const { return choice.bit >= 0; }
};

/// Quantities of a column: lowest, highest and last. A factor below 0 turns the first two round.
struct Quantities {
    double lowest = 0.0;
    double highest = 0.0;
    double last = 0.0;
};

Quantities quantitiesOf(const TraceReading &trace, const Column &column);

/// Lowest and highest of all columns; none where nothing is known.
std::optional<std::pair<double, double>> rangeOf(const TraceReading &trace);

/// Whether a bit was clear, and whether it was set, at some time in a column.
struct BitSeen {
    bool clear = false;
    bool set = false;
};

BitSeen bitIn(const TraceReading &trace, const Column &column);

/// The column that a moment falls into; null where nothing is known of it.
const Column *columnAt(const TraceReading &trace, Moment at);

/// Last quantity of the column at a moment; none where nothing is known, or of a bit.
std::optional<double> quantityAt(const TraceReading &trace, Moment at);

/// "49.98 Hz", "on", "off"; dashes where nothing is known.
QString textAt(const TraceReading &trace, Moment at, const QLocale &locale);

/// A quantity with its unit, and with the digits of its register.
QString quantityText(const TraceReading &trace, double quantity, const QLocale &locale);

} // namespace dx4::panel
