// SPDX-License-Identifier: MIT
// What fingers on a plot want of its time axis.
#include "panel/trendview/finger_track.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace dx4::panel {
namespace {

constexpr double leastSpread = 24.0; // px; nearer fingers would zoom by leaps

double spreadOf(const QVector<QPointF> &points)
{
    return std::max(leastSpread, std::abs(points.at(0).x() - points.at(1).x()));
}

double middleOf(const QVector<QPointF> &points)
{
    return (points.at(0).x() + points.at(1).x()) / 2.0;
}

} // namespace

FingerTrack::Change FingerTrack::move(const QVector<QPointF> &points)
{
    const QVector<QPointF> before = std::exchange(m_points, points);
    Change change;
    // A finger that comes or goes moves nothing.
    if (before.size() != points.size() || points.isEmpty())
        return change;
    if (points.size() == 1) {
        change.pan = points.first().x() - before.first().x();
        return change;
    }
    change.zoom = spreadOf(before) / spreadOf(points);
    change.around = middleOf(points);
    change.pan = middleOf(points) - middleOf(before);
    return change;
}

} // namespace dx4::panel
