// SPDX-License-Identifier: MIT
// The scales of traces, beside the plot.
#include "panel/trendview/scale_strip.h"

#include "panel/trendview/trace_colours.h"
#include "panel/widgets/value_label.h"

#include <QPainter>

namespace dx4::panel {
namespace {

constexpr int scaleWidth = 54; // px of one scale
constexpr int textSize = 13; // px
constexpr int margin = 5; // px to the right of labels

} // namespace

ScaleStrip::ScaleStrip(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("scales"));
}

int ScaleStrip::widthOf(int scales, double scale)
{
    return static_cast<int>(scales * scaleWidth * scale);
}

/// The first traces, with the selected one as the last.
QVector<int> ScaleStrip::chosen(const TraceScene &scene) const
{
    const int room = width() / widthOf(1, m_scale);
    QVector<int> traces;
    for (int i = 0; i < scene.traces.size() && traces.size() < room - 1; ++i) {
        if (i != scene.selected)
            traces.append(i);
    }
    if (scene.selected < scene.traces.size() && room > 0)
        traces.append(scene.selected);
    return traces;
}

void ScaleStrip::show(const TraceScene &scene, const QVector<NiceScale> &scales,
                      const QRect &canvas)
{
    m_canvas = QRect(0, canvas.top(), width(), canvas.height());
    m_ground = groundOf(m_canvas, scene, m_scale);
    m_lanes.clear();
    for (const TraceReading &lane : scene.lanes)
        m_lanes.append(lane.name);
    m_labels.clear();
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    for (const int trace : chosen(scene)) {
        const NiceScale &scale = scales.at(trace);
        Labels labels { trace, scene.traces.at(trace).scaling.unit, {}, trace == scene.selected };
        for (int line = 0; line <= scale.divisions; ++line)
            labels.texts.append(locale.toString(scale.at(line), 'f', scale.decimals));
        m_labels.append(labels);
    }
    update();
}

void ScaleStrip::drawLabels(QPainter &painter, const Look &look, const Labels &labels,
                            int left) const
{
    painter.setFont(sized(font(), static_cast<int>(textSize * m_scale), labels.isSelected));
    painter.setPen(traceColour(look, labels.trace));
    const int width = widthOf(1, m_scale) - margin;
    const int height = painter.fontMetrics().height();
    const int divisions = static_cast<int>(labels.texts.size()) - 1;
    for (int line = 0; line <= divisions; ++line) {
        const int y = m_ground.plot.bottom() - m_ground.plot.height() * line / divisions;
        painter.drawText(QRect(left, y - height / 2, width, height),
                         Qt::AlignRight | Qt::AlignVCenter, labels.texts.at(line));
    }
    // Between the highest label and the next.
    const int below = m_ground.plot.top() + height / 2;
    painter.drawText(QRect(left, below, width, height), Qt::AlignRight | Qt::AlignVCenter,
                     labels.unit);
}

void ScaleStrip::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    painter.fillRect(m_canvas, look.card);
    const int first = width() - widthOf(static_cast<int>(m_labels.size()), m_scale);
    for (int i = 0; i < m_labels.size(); ++i)
        drawLabels(painter, look, m_labels.at(i), first + i * widthOf(1, m_scale));
    drawLanes(painter, look);
}

void ScaleStrip::drawLanes(QPainter &painter, const Look &look) const
{
    painter.setFont(sized(font(), static_cast<int>(textSize * m_scale)));
    painter.setPen(look.text);
    QRect place = m_ground.lanes.adjusted(2, 0, -margin, 0);
    place.setHeight(laneHeight(m_scale));
    for (const QString &lane : m_lanes) {
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(lane, Qt::ElideRight, place.width()));
        place.translate(0, place.height());
    }
}

} // namespace dx4::panel
