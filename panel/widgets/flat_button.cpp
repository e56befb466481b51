// SPDX-License-Identifier: MIT
// A button for fingers, drawn flat.
#include "panel/widgets/flat_button.h"

#include "panel/widgets/look.h"

#include <QPainter>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int textMargin = 6; // px on each side
constexpr int progressHeight = 8; // px
constexpr int focusWidth = 3; // px

} // namespace

FlatButton::FlatButton(const QString &text, QWidget *parent)
    : QAbstractButton(parent)
{
    setText(text);
    setFocusPolicy(Qt::StrongFocus);
}

QSize FlatButton::minimumSizeHint() const
{
    const int width = fontMetrics().horizontalAdvance(text()) + 2 * textMargin;
    return { std::max(width, targetSize), targetSize };
}

QSize FlatButton::sizeHint() const
{
    return minimumSizeHint() + QSize(2 * textMargin, 0);
}

void FlatButton::drawGround(QPainter &painter, const QColor &ground, double part) const
{
    const Look look = lookOf(palette());
    painter.fillRect(rect(), ground);
    if (part > 0.0) {
        // A bar below the text, so that the text keeps its contrast.
        const int width = static_cast<int>(part * this->width());
        painter.fillRect(0, height() - progressHeight, width, progressHeight, look.accent);
    }
    const bool isFocused = hasFocus();
    painter.setPen(QPen(isFocused ? look.text : look.edge, isFocused ? focusWidth : 1));
    const int inset = isFocused ? 1 : 0;
    painter.drawRect(rect().adjusted(inset, inset, -1 - inset, -1 - inset));
}

void FlatButton::drawText(QPainter &painter, const QColor &colour) const
{
    painter.setPen(colour);
    painter.drawText(rect().adjusted(textMargin, 0, -textMargin, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, text());
}

void FlatButton::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    if (isChecked() || isDown()) {
        drawGround(painter, look.accent);
        return drawText(painter, look.accentText);
    }
    drawGround(painter, isEnabled() ? look.button : look.window);
    drawText(painter, isEnabled() ? look.buttonText : look.faint);
}

} // namespace dx4::panel
