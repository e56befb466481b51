// SPDX-License-Identifier: MIT
// The plot: traces with a scale each, lanes, markers, cursors.
#include "panel/trendview/trace_view.h"

#include "panel/trendview/scale_strip.h"
#include "panel/trendview/tight_plot.h"
#include "panel/trendview/time_axis.h"
#include "panel/trendview/trace_colours.h"
#include "panel/widgets/value_label.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QPainter>

#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_item.h>
#include <qwt_scale_div.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace dx4::panel {
namespace {

constexpr int axisText = 13; // px, at a scale of 1
constexpr int noteText = 15; // px
constexpr int tickWidth = 110; // px for a label of time
constexpr int divisionHeight = 44; // px
constexpr int leastPlot = 480; // px that are left to the plot by scales
constexpr int leastScales = 2; // whose width the names of the lanes need
constexpr double leastPart = 0.05; // of its size that a quantity has as its range

/// A quantity that hardly moves is no mountain range.
std::pair<double, double> widened(const std::pair<double, double> &range)
{
    const double size = std::max(std::abs(range.first), std::abs(range.second));
    const double missing = std::max(0.0, leastPart * size - (range.second - range.first));
    return { range.first - missing / 2, range.second + missing / 2 };
}

int scaled(int size, double scale)
{
    return static_cast<int>(size * scale);
}

Moment zoneOffset(Moment at)
{
    return static_cast<Moment>(QDateTime::fromMSecsSinceEpoch(at).offsetFromUtc()) * 1000;
}

} // namespace

/// Hands the drawing to the view.
class TraceView::Canvas : public QwtPlotItem {
public:
    explicit Canvas(const TraceView &view)
        : m_view(view)
    {
    }

    void draw(QPainter *painter, const QwtScaleMap &, const QwtScaleMap &,
              const QRectF &rect) const override
    {
        m_view.drawCanvas(*painter, rect.toRect());
    }

private:
    const TraceView &m_view;
};

TraceView::TraceView(QWidget *parent)
    : QWidget(parent)
    , m_plot(new QwtPlot)
    , m_strip(new ScaleStrip)
{
    setObjectName(QStringLiteral("plot"));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_AcceptTouchEvents);
    setAccessibleName(tr("Plot"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_strip, 0);
    row->addWidget(m_plot, 1);
    m_plot->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_plot->enableAxis(QwtPlot::yLeft, false);
    m_plot->setAxisScaleDraw(QwtPlot::xBottom, new TimeAxis);
    setTight(*m_plot);
    m_plot->axisWidget(QwtPlot::xBottom)->setMargin(0);
    auto *canvas = static_cast<QwtPlotCanvas *>(m_plot->canvas());
    canvas->setFrameStyle(QFrame::NoFrame);
    // Each picture is drawn once: a copy of it would only be one more to draw.
    canvas->setPaintAttribute(QwtPlotCanvas::BackingStore, false);
    canvas->setFocusPolicy(Qt::NoFocus);
    (new Canvas(*this))->attach(m_plot);
    m_plot->setMinimumSize(0, 0);
}

TraceView::~TraceView() = default;

void TraceView::setScale(double scale)
{
    m_scale = scale;
    m_strip->setScale(scale);
    m_plot->setAxisFont(QwtPlot::xBottom, sized(font(), scaled(axisText, scale)));
}

int TraceView::divisions() const
{
    return std::clamp(ground().plot.height() / scaled(divisionHeight, m_scale), 2, 8);
}

void TraceView::setScales()
{
    m_scales.clear();
    for (const TraceReading &trace : std::as_const(m_scene.traces)) {
        const auto range = widened(rangeOf(trace).value_or(std::pair<double, double>(0.0, 1.0)));
        m_scales.append(niceScale(range.first, range.second, divisions(), trace.scaling.decimals));
    }
}

NiceScale TraceView::scaleOf(int trace) const
{
    return m_scales.value(trace);
}

void TraceView::setTimeAxis()
{
    const Moment offset = zoneOffset(m_scene.to + m_scene.shift) + m_scene.shift;
    const int width = std::max(1, plotRect().width());
    const int label = scaled(tickWidth, m_scale);
    m_ticks = timeTicks(m_scene.from, m_scene.to, offset, std::max(1, width / label));
    QList<double> majors;
    for (const Moment at : std::as_const(m_ticks.at))
        majors.append(static_cast<double>(at));
    auto *axis = static_cast<TimeAxis *>(m_plot->axisScaleDraw(QwtPlot::xBottom));
    axis->show(m_ticks, m_scene.from, m_scene.to, m_scene.shift,
               (m_scene.to - m_scene.from) * label / 3 / width);
    m_plot->setAxisScaleDiv(QwtPlot::xBottom,
                            QwtScaleDiv(static_cast<double>(m_scene.from),
                                        static_cast<double>(m_scene.to), {}, {}, majors));
}

void TraceView::show(const TraceScene &scene)
{
    m_scene = scene;
    const int room =
        std::max(1, (width() - scaled(leastPlot, m_scale)) / ScaleStrip::widthOf(1, m_scale));
    const int scales =
        std::clamp(static_cast<int>(scene.traces.size()), leastScales, std::max(leastScales, room));
    m_strip->setFixedWidth(ScaleStrip::widthOf(scales, m_scale));
    layout()->activate();
    m_plot->setCanvasBackground(lookOf(palette()).card);
    setScales();
    setTimeAxis();
    m_plot->replot();
    m_strip->show(m_scene, m_scales, plotRect());
}

int TraceView::mostColumns() const
{
    return std::max(100, 2 * plotRect().width());
}

QRect TraceView::plotRect() const
{
    const QWidget *canvas = m_plot->canvas();
    return { canvas->mapTo(this, QPoint(0, 0)), canvas->size() };
}

TraceGround TraceView::ground() const
{
    return groundOf(QRect(QPoint(0, 0), m_plot->canvas()->size()), m_scene, m_scale);
}

Moment TraceView::momentAt(int x) const
{
    return groundOf(plotRect(), m_scene, m_scale).momentAt(x);
}

int TraceView::xOf(Moment at) const
{
    return groundOf(plotRect(), m_scene, m_scale).x(at);
}

void TraceView::drawGrid(QPainter &painter, const Look &look, const TraceGround &ground) const
{
    painter.setPen(QPen(look.edge, 1, Qt::DotLine));
    const int lines = divisions();
    for (int line = 0; line <= lines; ++line) {
        const int y = ground.plot.bottom() - ground.plot.height() * line / lines;
        painter.drawLine(ground.plot.left(), y, ground.plot.right(), y);
    }
    for (const Moment at : m_ticks.at)
        painter.drawLine(ground.x(at), ground.plot.top(), ground.x(at), ground.lanes.bottom());
}

void TraceView::drawNotes(QPainter &painter, const Look &look, const TraceGround &ground) const
{
    const QStringList notes = m_scene.notes + m_told;
    painter.setFont(sized(font(), scaled(noteText, m_scale), true));
    const int line = painter.fontMetrics().height() + 4;
    QPoint corner = ground.plot.topLeft() + QPoint(6, 4);
    for (const QString &note : notes) {
        drawTag(painter, look.text, look.card, corner, note, ground.plot);
        corner += QPoint(0, line);
    }
}

void TraceView::drawCanvas(QPainter &painter, const QRect &rect) const
{
    const Look look = lookOf(palette());
    const TraceGround ground = groundOf(rect, m_scene, m_scale);
    drawGrid(painter, look, ground);
    const int thickness = scaled(1, m_scale);
    const auto draw = [&](int trace, int more) {
        drawTrace(painter,
                  linesOf(m_scene.traces.at(trace), m_scales.at(trace), ground, m_scene.now),
                  traceColour(look, trace), thickness + more);
    };
    for (int trace = 0; trace < m_scene.traces.size(); ++trace) {
        if (trace != m_scene.selected)
            draw(trace, 0);
    }
    if (m_scene.selected < m_scene.traces.size())
        draw(m_scene.selected, 1);
    QRect place(ground.lanes.topLeft(), QSize(ground.lanes.width(), laneHeight(m_scale)));
    for (const TraceReading &lane : m_scene.lanes) {
        drawLane(painter, look, place, lane, ground, m_scene.now);
        place.translate(0, place.height());
    }
    drawMarkers(painter, look, m_scene, ground);
    drawCursors(painter, look, m_scene, ground);
    drawNotes(painter, look, ground);
}

} // namespace dx4::panel
