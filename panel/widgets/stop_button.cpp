// SPDX-License-Identifier: MIT
// The button that stops every drive.
#include "panel/widgets/stop_button.h"

#include "panel/widgets/look.h"

#include <QKeyEvent>
#include <QPainter>

namespace dx4::panel {
bool isPressKey(const QKeyEvent &event)
{
    const int key = event.key();
    const bool isPress = key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
    return isPress && !event.isAutoRepeat();
}

StopButton::StopButton(QWidget *parent)
    : FlatButton(tr("Stop"), parent)
{
    setObjectName(QStringLiteral("stop"));
    setAccessibleName(tr("Stop all drives"));
    setAttribute(Qt::WA_AcceptTouchEvents);
}

bool StopButton::event(QEvent *event)
{
    // A touch that is taken here comes no second time as a mouse press.
    switch (event->type()) {
    case QEvent::TouchBegin:
        setDown(true);
        Q_EMIT stopWanted();
        event->accept();
        return true;
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        setDown(false);
        event->accept();
        return true;
    default:
        return FlatButton::event(event);
    }
}

void StopButton::mousePressEvent(QMouseEvent *event)
{
    FlatButton::mousePressEvent(event);
    Q_EMIT stopWanted();
}

void StopButton::keyPressEvent(QKeyEvent *event)
{
    if (isPressKey(*event))
        Q_EMIT stopWanted();
    else
        FlatButton::keyPressEvent(event);
}

void StopButton::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    drawGround(painter, isDown() ? look.faultGround : look.stop);
    drawText(painter, look.stopText);
}

} // namespace dx4::panel
