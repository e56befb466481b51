// SPDX-License-Identifier: MIT
// A value with its age, in the colours of how far it can be trusted.
#include "panel/widgets/value_label.h"

#include "panel/widgets/look.h"

namespace dx4::panel {

void setTextColour(QWidget &widget, const QColor &colour)
{
    QPalette palette = widget.palette();
    if (palette.color(QPalette::WindowText) == colour)
        return;
    palette.setColor(QPalette::WindowText, colour);
    widget.setPalette(palette);
}

QFont sized(const QFont &font, int size, bool isBold)
{
    QFont other = font;
    other.setPixelSize(size);
    other.setBold(isBold);
    return other;
}

ValueLabel::ValueLabel(int size, Age age, QWidget *parent)
    : QLabel(Shown::dashes(), parent)
    , m_age(age)
{
    setTextFormat(Qt::PlainText);
    setTextSize(size);
}

void ValueLabel::setTextSize(int size)
{
    if (font().pixelSize() != size)
        setFont(sized(font(), size));
}

void ValueLabel::show(const QString &name, const Shown &shown)
{
    const Look look = lookOf(palette());
    const bool isFresh = shown.trust == Shown::Trust::Fresh && !shown.pending;
    setText(m_age == Age::Inside ? shown.fullText() : shown.text());
    setTextColour(*this, isFresh ? look.text : look.faded);
    setAccessibleName(QStringLiteral("%1: %2").arg(name, shown.fullText()));
}

} // namespace dx4::panel
