// SPDX-License-Identifier: MIT
// A button that acts when it was held, for what moves a machine.
#include "panel/widgets/hold_button.h"

#include "panel/widgets/look.h"
#include "panel/widgets/stop_button.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

constexpr int lookInterval = 100; // ms

} // namespace

HoldButton::HoldButton(const QString &text, std::function<host::Duration()> now, QWidget *parent)
    : FlatButton(text, parent)
    , m_now(std::move(now))
{
    setAccessibleDescription(tr("Hold it for 0.8 seconds"));
    m_timer.setInterval(lookInterval);
    connect(&m_timer, &QTimer::timeout, this, &HoldButton::look);
}

double HoldButton::progress() const
{
    const double part = static_cast<double>(m_heldFor.count()) / holdTime.count();
    return std::min(part, 1.0);
}

void HoldButton::begin()
{
    m_isHeld = true;
    m_heldFor = host::Duration(0);
    m_lastLook = m_now();
    m_timer.start();
    update();
}

void HoldButton::letGo()
{
    m_isHeld = false;
    m_heldFor = host::Duration(0);
    m_timer.stop();
    update();
}

void HoldButton::look()
{
    if (!m_isHeld)
        return;
    const host::Duration now = m_now();
    m_heldFor += std::min(now - m_lastLook, mostOfOneLook);
    m_lastLook = now;
    if (m_heldFor < holdTime)
        return update();
    letGo();
    Q_EMIT held();
}

void HoldButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        begin();
}

void HoldButton::mouseMoveEvent(QMouseEvent *event)
{
    if (!rect().contains(event->pos()))
        letGo();
}

void HoldButton::mouseReleaseEvent(QMouseEvent *)
{
    letGo();
}

void HoldButton::keyPressEvent(QKeyEvent *event)
{
    if (isPressKey(*event))
        begin();
    else if (!event->isAutoRepeat())
        FlatButton::keyPressEvent(event);
}

void HoldButton::keyReleaseEvent(QKeyEvent *event)
{
    if (isPressKey(*event))
        letGo();
}

void HoldButton::focusOutEvent(QFocusEvent *event)
{
    letGo();
    FlatButton::focusOutEvent(event);
}

void HoldButton::hideEvent(QHideEvent *event)
{
    letGo();
    FlatButton::hideEvent(event);
}

void HoldButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange)
        letGo();
    FlatButton::changeEvent(event);
}

void HoldButton::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    drawGround(painter, isEnabled() ? look.button : look.window, progress());
    drawText(painter, isEnabled() ? look.buttonText : look.faint);
}

} // namespace dx4::panel
