// SPDX-License-Identifier: MIT
// Round numbers for scales.
#pragma once

#include "panel/trend/column.h"

#include <QVector>

namespace dx4::panel {

/// A scale of equal divisions, each of a round size.
struct NiceScale {
    double lowest = 0.0;
    double step = 1.0; ///< 1, 2, 2.5 or 5 times a power of ten
    int divisions = 5;
    int decimals = 0; ///< digits behind the point that its labels need

    double highest() const { return lowest + step * divisions; }
    double at(int line) const { return lowest + step * line; }
};

/// The finest scale that holds everything between two quantities.
///
/// @param decimals  digits behind the point that the quantity has; no step is finer than that
NiceScale niceScale(double lowest, double highest, int divisions, int decimals);

/// Moments of round time of day within a window.
struct TimeTicks {
    Moment step = 1000; ///< ms
    QVector<Moment> at;
};

/// @param offset  of the time zone, ms; round is what is round there
/// @param most    ticks, at least 1
TimeTicks timeTicks(Moment from, Moment to, Moment offset, int most);

} // namespace dx4::panel
