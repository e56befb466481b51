// SPDX-License-Identifier: MIT
// Lines of a trace as few and wide rectangles.
#pragma once

#include <QLine>
#include <QRect>
#include <QVector>

namespace dx4::panel {

/// Each line as a rectangle. Upright ones of columns of a few pixels are as wide as their column,
/// which the level line behind them tells; else a dense picture would have stripes.
QVector<QRect> barsOf(const QVector<QLine> &lines, int thickness);

/// Covers the same pixels. Bars side by side have what is common to them filled at one stroke:
/// memory is quick along a row and slow down a column.
QVector<QRect> joined(const QVector<QRect> &bars);

} // namespace dx4::panel
