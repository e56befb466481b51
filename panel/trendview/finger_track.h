// SPDX-License-Identifier: MIT
// What fingers on a plot want of its time axis.
#pragma once

#include <QPointF>
#include <QVector>

namespace dx4::panel {

/// One finger pans, two pinch. Positions are of one direction, px.
class FingerTrack {
public:
    struct Change {
        double pan = 0.0; ///< px that what lies below moves along
        double zoom = 1.0; ///< what is shown is so many times as long
        double around = 0.0; ///< px that stays where it is
    };

    void begin(const QVector<QPointF> &points) { m_points = points; }
    Change move(const QVector<QPointF> &points);
    void end() { m_points.clear(); }
    bool isTracking() const { return !m_points.isEmpty(); }

private:
    QVector<QPointF> m_points;
};

} // namespace dx4::panel
