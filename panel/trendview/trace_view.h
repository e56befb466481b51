// SPDX-License-Identifier: MIT
// The plot: traces with a scale each, lanes, markers, cursors, and what fingers do to them.
#pragma once

#include "panel/trendview/finger_track.h"
#include "panel/trendview/trace_painter.h"

#include <QWidget>

class QwtPlot;

namespace dx4::panel {

class ScaleStrip;

/// Draws what it is given; what the user wants is told by signals. The one place that knows the
/// library of plots.
class TraceView : public QWidget {
    Q_OBJECT

public:
    explicit TraceView(QWidget *parent = nullptr);
    ~TraceView() override;

    void show(const TraceScene &scene);
    using QWidget::show;

    void setScale(double scale);

    /// Columns of a trace that have a meaning: two for each pixel.
    int mostColumns() const;

    const TraceScene &scene() const { return m_scene; }

    /// The scale of a trace as it is drawn.
    NiceScale scaleOf(int trace) const;

    /// Rectangle of the plot, in the coordinates of this widget.
    QRect plotRect() const;

    Moment momentAt(int x) const;
    int xOf(Moment at) const;

Q_SIGNALS:
    /// @param by  ms, above 0: to later moments
    void panned(dx4::panel::Moment by);
    void zoomed(double factor, dx4::panel::Moment around);
    /// @param which  0 or 1
    void cursorMoved(int which, dx4::panel::Moment at);
    void liveWanted();
    void pauseWanted();
    /// @param by  -1 or 1
    void traceWanted(int by);

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    class Canvas;

    void drawCanvas(QPainter &painter, const QRect &rect) const;
    void drawGrid(QPainter &painter, const Look &look, const TraceGround &ground) const;
    void drawNotes(QPainter &painter, const Look &look, const TraceGround &ground) const;
    void setScales();
    void setTimeAxis();
    int divisions() const;
    TraceGround ground() const;
    void begin(const QVector<QPointF> &points);
    void follow(const QVector<QPointF> &points);
    void end();
    bool moveCursor(const QKeyEvent &event);
    void tellMarkersAt(int x);

    TraceScene m_scene;
    QVector<NiceScale> m_scales;
    TimeTicks m_ticks;
    double m_scale = 1.0;
    QwtPlot *m_plot;
    ScaleStrip *m_strip;
    FingerTrack m_fingers;
    std::optional<int> m_dragged; // cursor
    int m_active = 0; // cursor that keys move
    bool m_hasMoved = false; // since it was touched
    QPointF m_touchedAt;
    QStringList m_told; // of the markers that were touched
};

} // namespace dx4::panel
