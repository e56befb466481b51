// SPDX-License-Identifier: MIT
// The scales of traces, beside the plot.
#pragma once

#include "panel/trendview/trace_painter.h"

#include <QWidget>

namespace dx4::panel {

/// Labels at the lines of the grid, in the colours of their traces: as many scales as there is room
/// for, the selected one always and next to the plot. Below are the names of the lanes.
class ScaleStrip : public QWidget {
    Q_OBJECT

public:
    explicit ScaleStrip(QWidget *parent = nullptr);

    /// @param canvas  what it stands beside
    void show(const TraceScene &scene, const QVector<NiceScale> &scales, const QRect &canvas);
    using QWidget::show;

    /// Width of so many scales, px.
    static int widthOf(int scales, double scale);

    void setScale(double scale) { m_scale = scale; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Labels {
        int trace = 0;
        QString unit;
        QStringList texts; ///< from below to above
        bool isSelected = false;
    };

    void drawLabels(QPainter &painter, const Look &look, const Labels &labels, int left) const;
    QVector<int> chosen(const TraceScene &scene) const;

    void drawLanes(QPainter &painter, const Look &look) const;

    QVector<Labels> m_labels;
    QStringList m_lanes;
    QRect m_canvas;
    TraceGround m_ground;
    double m_scale = 1.0;
};

} // namespace dx4::panel
