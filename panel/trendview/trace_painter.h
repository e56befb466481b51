// SPDX-License-Identifier: MIT
// Draws traces, lanes, markers and cursors into a rectangle.
#pragma once

#include "panel/trendview/trace_scene.h"
#include "panel/widgets/look.h"

#include <QLine>
#include <QRect>

#include <functional>

class QPainter;

namespace dx4::panel {

/// Where what is: moments from left to right, quantities of a scale from below to above, lanes at
/// the bottom.
struct TraceGround {
    QRect plot; ///< of the traces
    QRect lanes; ///< below it
    Moment from = 0;
    Moment to = 1;
    double scale = 1.0; ///< of texts and lines

    int x(Moment at) const;
    Moment momentAt(int x) const;
};

/// Height of one lane at a scale, px.
int laneHeight(double scale);

/// Room that scenes of so many lanes have in a rectangle.
TraceGround groundOf(const QRect &rect, const TraceScene &scene, double scale);

/// Lines of a trace: level where a value stayed, upright where it moved, none where it was not
/// known.
QVector<QLine> linesOf(const TraceReading &trace, const NiceScale &scale, const TraceGround &ground,
                       Moment now);

void drawTrace(QPainter &painter, const QVector<QLine> &lines, const QColor &colour, int thickness);
void drawLane(QPainter &painter, const Look &look, const QRect &place, const TraceReading &lane,
              const TraceGround &ground, Moment now);
void drawMarkers(QPainter &painter, const Look &look, const TraceScene &scene,
                 const TraceGround &ground);
void drawCursors(QPainter &painter, const Look &look, const TraceScene &scene,
                 const TraceGround &ground);

/// Texts on their own ground, in a corner.
void drawTag(QPainter &painter, const QColor &ground, const QColor &text, QPoint corner,
             const QString &words, const QRect &within);

} // namespace dx4::panel
