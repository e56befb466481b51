// SPDX-License-Identifier: MIT
// The plot under mouse, fingers and keys.
#include "panel/trendview/trace_view.h"

#include <QMouseEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace dx4::panel {
namespace {

constexpr int reach = 24; // px from a cursor or a marker within which a finger means it
constexpr int stillWithin = 8; // px that a touch may move and is a tap
constexpr int mostTold = 4; // markers
constexpr double wheelStep = 1.25; // of a notch
constexpr double notch = 120.0; // of a wheel, in eighths of a degree
constexpr double keyStep = 1.5;
constexpr int panParts = 10; // of the window that a key moves

QVector<QPointF> pointsOf(const QTouchEvent &event)
{
    QVector<QPointF> points;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    for (const QEventPoint &point : event.points()) {
        if (point.state() != QEventPoint::Released)
            points.append(point.position());
    }
#else
    for (const QTouchEvent::TouchPoint &point : event.touchPoints()) {
        if (point.state() != Qt::TouchPointReleased)
            points.append(point.pos());
    }
#endif
    return points;
}

} // namespace

bool TraceView::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
        begin(pointsOf(*static_cast<QTouchEvent *>(event)));
        event->accept();
        return true;
    case QEvent::TouchUpdate:
        follow(pointsOf(*static_cast<QTouchEvent *>(event)));
        event->accept();
        return true;
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        end();
        event->accept();
        return true;
    default:
        return QWidget::event(event);
    }
}

void TraceView::begin(const QVector<QPointF> &points)
{
    m_fingers.begin(points);
    m_hasMoved = points.size() != 1;
    m_dragged.reset();
    m_told.clear();
    if (points.isEmpty())
        return;
    m_touchedAt = points.first();
    const int x = static_cast<int>(m_touchedAt.x());
    for (int which = 0; which < 2; ++which) {
        const auto &cursor = m_scene.cursors.at(static_cast<std::size_t>(which));
        if (points.size() == 1 && cursor && std::abs(xOf(*cursor) - x) <= reach)
            m_dragged = which;
    }
    if (m_dragged)
        m_active = *m_dragged;
}

void TraceView::follow(const QVector<QPointF> &points)
{
    if (points.size() == 1 && m_dragged) {
        m_hasMoved = true;
        Q_EMIT cursorMoved(*m_dragged, momentAt(static_cast<int>(points.first().x())));
        return;
    }
    const bool isStill = points.size() == 1 && !m_hasMoved
        && std::abs(points.first().x() - m_touchedAt.x()) <= stillWithin;
    if (isStill)
        return;
    m_hasMoved = true;
    const FingerTrack::Change change = m_fingers.move(points);
    const double perPixel =
        static_cast<double>(m_scene.to - m_scene.from) / std::max(1, plotRect().width());
    if (std::abs(change.zoom - 1.0) > 0.0)
        Q_EMIT zoomed(change.zoom, momentAt(static_cast<int>(change.around)));
    if (std::abs(change.pan) > 0.0)
        Q_EMIT panned(static_cast<Moment>(-change.pan * perPixel));
}

void TraceView::end()
{
    if (!m_hasMoved && m_fingers.isTracking())
        tellMarkersAt(static_cast<int>(m_touchedAt.x()));
    m_fingers.end();
    m_dragged.reset();
}

void TraceView::tellMarkersAt(int x)
{
    for (const Marker &marker : std::as_const(m_scene.markers)) {
        const bool isNear = std::abs(xOf(marker.at) - x) <= reach;
        if (isNear && m_told.size() < mostTold)
            m_told.append(timeText(marker.at, m_scene.shift, true) + QStringLiteral("  ")
                          + marker.text);
    }
    show(m_scene);
}

void TraceView::mousePressEvent(QMouseEvent *event)
{
    begin({ QPointF(event->pos()) });
}

void TraceView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_fingers.isTracking())
        follow({ QPointF(event->pos()) });
}

void TraceView::mouseReleaseEvent(QMouseEvent *)
{
    end();
}

void TraceView::wheelEvent(QWheelEvent *event)
{
    const QPoint turned = event->angleDelta();
    const int x = static_cast<int>(event->position().x());
    if (turned.y() != 0)
        Q_EMIT zoomed(std::pow(wheelStep, -turned.y() / notch), momentAt(x));
    else if (turned.x() != 0)
        Q_EMIT panned(static_cast<Moment>(
            -turned.x() / notch * static_cast<double>(m_scene.to - m_scene.from) / panParts));
    event->accept();
}

/// By one pixel of the active cursor.
bool TraceView::moveCursor(const QKeyEvent &event)
{
    const bool isAside = event.key() == Qt::Key_Left || event.key() == Qt::Key_Right;
    const auto &cursor = m_scene.cursors.at(static_cast<std::size_t>(m_active));
    if (!isAside || !cursor || !(event.modifiers() & Qt::ShiftModifier))
        return false;
    const Moment step =
        std::max<Moment>(1, (m_scene.to - m_scene.from) / std::max(1, plotRect().width()));
    Q_EMIT cursorMoved(m_active, *cursor + (event.key() == Qt::Key_Left ? -step : step));
    return true;
}

void TraceView::keyPressEvent(QKeyEvent *event)
{
    const Moment span = m_scene.to - m_scene.from;
    const Moment middle = m_scene.from + span / 2;
    if (moveCursor(*event))
        return;
    switch (event->key()) {
    case Qt::Key_Left:
        return Q_EMIT panned(-span / panParts);
    case Qt::Key_Right:
        return Q_EMIT panned(span / panParts);
    case Qt::Key_PageUp:
        return Q_EMIT panned(-span);
    case Qt::Key_PageDown:
        return Q_EMIT panned(span);
    case Qt::Key_Plus:
        return Q_EMIT zoomed(1.0 / keyStep, middle);
    case Qt::Key_Minus:
        return Q_EMIT zoomed(keyStep, middle);
    case Qt::Key_End:
        return Q_EMIT liveWanted();
    case Qt::Key_P:
        return Q_EMIT pauseWanted();
    case Qt::Key_Up:
        return Q_EMIT traceWanted(-1);
    case Qt::Key_Down:
        return Q_EMIT traceWanted(1);
    case Qt::Key_A:
    case Qt::Key_B:
        m_active = event->key() == Qt::Key_A ? 0 : 1;
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void TraceView::resizeEvent(QResizeEvent *)
{
    show(m_scene);
}

} // namespace dx4::panel
