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
/// Width of a text that is broken between two words where that makes it narrowest.
int widthOfTwoLines(const QFontMetrics &metrics, const QString &text)
{
    int narrowest = metrics.horizontalAdvance(text);
    for (int at = 0; at < text.size(); ++at) {
        if (text.at(at) != QLatin1Char(' '))
            continue;
        const int broken = std::max(metrics.horizontalAdvance(text.left(at)),
                                    metrics.horizontalAdvance(text.mid(at + 1)));
        narrowest = std::min(narrowest, broken);
    }
    return narrowest;
}

constexpr int linesOfTarget =
    3; // height in sizes of the text: on a large screen it is a large target

} // namespace

FlatButton::FlatButton(const QString &text, QWidget *parent)
    : QAbstractButton(parent)
{
    setText(text);
    setFocusPolicy(Qt::StrongFocus);
}

QSize FlatButton::minimumSizeHint() const
{
    const int width = widthOfTwoLines(fontMetrics(), text()) + 2 * textMargin;
    const int height = std::max(targetSize, linesOfTarget * QFontInfo(font()).pixelSize());
    return { std::max(width, targetSize), height };
}

QSize FlatButton::sizeHint() const
{
    const int width = fontMetrics().horizontalAdvance(text()) + 4 * textMargin;
    return minimumSizeHint().expandedTo({ width, 0 });
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
