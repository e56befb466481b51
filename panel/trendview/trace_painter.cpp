// SPDX-License-Identifier: MIT
// Draws traces, lanes, markers and cursors into a rectangle.
#include "panel/trendview/trace_painter.h"

#include "panel/trendview/trace_bars.h"
#include "panel/widgets/value_label.h"

#include <QPainter>
#include <QPolygon>

#include <algorithm>
#include <cmath>

namespace dx4::panel {
namespace {

constexpr int laneSize = 20; // px, at a scale of 1
constexpr int tagText = 13; // px
constexpr int tagMargin = 4; // px
constexpr int edge = 8; // px above and below the scale, for half a line of its labels
constexpr int markerSize = 12; // px

int scaled(int size, double scale)
{
    return static_cast<int>(size * scale);
}

QColor colourOf(Marker::Kind kind, const Look &look)
{
    switch (kind) {
    case Marker::Kind::Fault:
        return look.warning;
    case Marker::Kind::Trigger:
        return look.accent;
    case Marker::Kind::Write:
        break;
    }
    return look.faded;
}

/// A fault is a triangle, a trigger a square, a write a rhombus: not told by colour alone.
QPolygon shapeOf(Marker::Kind kind, QPoint top, int size)
{
    const int half = size / 2;
    const QPoint left(top.x() - half, top.y());
    const QPoint right(top.x() + half, top.y());
    const QPoint below(0, size);
    switch (kind) {
    case Marker::Kind::Fault:
        return QPolygon({ left, right, top + below });
    case Marker::Kind::Trigger:
        return QPolygon({ left, right, right + below, left + below });
    case Marker::Kind::Write:
        break;
    }
    return QPolygon({ top, right + below / 2, top + below, left + below / 2 });
}

/// A pen that draws level and upright lines.
class TraceLines {
public:
    explicit TraceLines(int most) { m_lines.reserve(most); }

    const QVector<QLine> &lines() const { return m_lines; }

    /// What comes next has no line to what was before.
    void lift() { m_isDown = false; }

    /// A column: all that it touched at its left, from below to above, and where it ended.
    void add(int left, int right, int lowest, int highest, int last)
    {
        if (m_isDown) {
            lowest = std::max(lowest, m_y);
            highest = std::min(highest, m_y);
        }
        const bool isFlat = lowest == highest;
        if (m_isDown && isFlat) {
            m_lines.last().setP2({ right, last });
            return;
        }
        if (!isFlat)
            m_lines.append({ left, lowest, left, highest });
        m_lines.append({ left, last, right, last });
        m_y = last;
        m_isDown = true;
    }

private:
    QVector<QLine> m_lines;
    bool m_isDown = false; // the newest line is level and can be drawn on
    int m_y = 0; // of it
};

} // namespace

int TraceGround::x(Moment at) const
{
    const double part = static_cast<double>(at - from) / static_cast<double>(to - from);
    return plot.left() + static_cast<int>(std::lround(part * plot.width()));
}

Moment TraceGround::momentAt(int x) const
{
    const double part = static_cast<double>(x - plot.left()) / std::max(1, plot.width());
    return from + static_cast<Moment>(part * static_cast<double>(to - from));
}

int laneHeight(double scale)
{
    return scaled(laneSize, scale);
}

TraceGround groundOf(const QRect &rect, const TraceScene &scene, double scale)
{
    const int lanes = laneHeight(scale) * static_cast<int>(scene.lanes.size());
    TraceGround ground;
    ground.lanes = QRect(rect.left(), rect.bottom() + 1 - lanes, rect.width(), lanes);
    ground.plot = rect.adjusted(0, scaled(edge, scale), 0, -lanes - scaled(edge, scale));
    ground.from = scene.from;
    ground.to = scene.to;
    ground.scale = scale;
    return ground;
}

QVector<QLine> linesOf(const TraceReading &trace, const NiceScale &scale, const TraceGround &ground,
                       Moment now)
{
    const ColumnRun &run = trace.run;
    const double perUnit = ground.plot.height() / (scale.highest() - scale.lowest);
    const auto y = [&](double quantity) {
        return ground.plot.bottom() - static_cast<int>((quantity - scale.lowest) * perUnit);
    };
    TraceLines lines(static_cast<int>(2 * run.columns.size()));
    for (std::size_t i = 0; i < run.columns.size(); ++i) {
        const Column &column = run.columns[i];
        // Of a column with a gap one does not know which part is known.
        if (!column.isKnown() || column.hasGap)
            lines.lift();
        if (!column.isKnown())
            continue;
        const Quantities of = quantitiesOf(trace, column);
        const int left = ground.x(run.beginOf(i));
        const Moment end = run.beginOf(i) + (column.hasGap ? run.width / 2 : run.width);
        lines.add(left, ground.x(std::min(end, now)), y(of.lowest), y(of.highest), y(of.last));
        if (column.hasGap)
            lines.lift();
    }
    return lines.lines();
}

void drawTrace(QPainter &painter, const QVector<QLine> &lines, const QColor &colour, int thickness)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRects(joined(barsOf(lines, thickness)));
}

void drawLane(QPainter &painter, const Look &look, const QRect &place, const TraceReading &lane,
              const TraceGround &ground, Moment now)
{
    const ColumnRun &run = lane.run;
    const QRect inner = place.adjusted(0, 3, 0, -3);
    for (std::size_t i = 0; i < run.columns.size(); ++i) {
        const Column &column = run.columns[i];
        if (!column.isKnown())
            continue;
        const BitSeen seen = bitIn(lane, column);
        const int left = ground.x(run.beginOf(i));
        const int right = ground.x(std::min(run.beginOf(i) + run.width, now));
        const int width = std::max(1, right - left);
        // Half as high where it was both: neither is lost in a wide column.
        const int height = seen.clear ? inner.height() / 2 : inner.height();
        if (seen.set)
            painter.fillRect(left, inner.bottom() + 1 - height, width, height, look.accent);
        else
            painter.fillRect(left, inner.bottom(), width, 1, look.faded);
    }
}

void drawTag(QPainter &painter, const QColor &ground, const QColor &text, QPoint corner,
             const QString &words, const QRect &within)
{
    const QFontMetrics metrics = painter.fontMetrics();
    QRect tag(corner,
              QSize(metrics.horizontalAdvance(words) + 2 * tagMargin, metrics.height() + 2));
    tag.moveLeft(std::clamp(tag.left(), within.left(),
                            std::max(within.left(), within.right() - tag.width())));
    painter.fillRect(tag, ground);
    painter.setPen(text);
    painter.drawText(tag, Qt::AlignCenter, words);
}

void drawMarkers(QPainter &painter, const Look &look, const TraceScene &scene,
                 const TraceGround &ground)
{
    const int size = scaled(markerSize, ground.scale);
    for (const Marker &marker : scene.markers) {
        const int x = ground.x(marker.at);
        const QColor colour = colourOf(marker.kind, look);
        painter.setPen(QPen(colour, 1, Qt::DashLine));
        painter.drawLine(x, ground.plot.top(), x, ground.lanes.bottom());
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawPolygon(shapeOf(marker.kind, { x, ground.plot.top() - edge / 2 }, size));
    }
}

void drawCursors(QPainter &painter, const Look &look, const TraceScene &scene,
                 const TraceGround &ground)
{
    painter.setFont(sized(painter.font(), scaled(tagText, ground.scale), true));
    const int line = painter.fontMetrics().height() + tagMargin;
    for (std::size_t i = 0; i < scene.cursors.size(); ++i) {
        if (!scene.cursors.at(i))
            continue;
        const Moment at = *scene.cursors.at(i);
        const int x = ground.x(at);
        if (x < ground.plot.left() || x > ground.plot.right())
            continue;
        painter.fillRect(x - 1, ground.plot.top(), 2, ground.lanes.bottom() - ground.plot.top(),
                         look.text);
        QString words = (i == 0 ? QStringLiteral("A ") : QStringLiteral("B "))
            + timeText(at, scene.shift, true);
        if (i == 1 && scene.cursors.at(0))
            words += QStringLiteral("  B-A ") + spanText(at - *scene.cursors.at(0));
        const int top = ground.plot.bottom() - (2 - static_cast<int>(i)) * line;
        drawTag(painter, look.text, look.card, { x + 2, top }, words, ground.plot);
    }
}

} // namespace dx4::panel
