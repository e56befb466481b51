// SPDX-License-Identifier: MIT
// A trace above the plot: its name and its value.
#include "panel/trendview/trace_chip.h"

#include "panel/trendview/trace_colours.h"
#include "panel/widgets/value_label.h"

#include <QPainter>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int nameSize = 12; // px, as the others at a scale of 1
constexpr int valueSize = 18; // of one line
constexpr int smallSize = 12; // of several lines
constexpr int bar = 8; // px of colour at the left
constexpr int margin = 5; // px

int scaled(int size, double scale)
{
    return static_cast<int>(size * scale);
}

/// The text in a font that is as small as it has to be, but no smaller than names.
void drawFitting(QPainter &painter, const QRect &place, int size, const QString &text, int least)
{
    QFont font = painter.font();
    for (font.setPixelSize(size); font.pixelSize() > least; font.setPixelSize(--size)) {
        if (QFontMetrics(font).horizontalAdvance(text) <= place.width())
            break;
    }
    painter.setFont(font);
    const QString fitting = painter.fontMetrics().elidedText(text, Qt::ElideRight, place.width());
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, fitting);
}

} // namespace

TraceChip::TraceChip(int index, QWidget *parent)
    : FlatButton(QString(), parent)
    , m_index(index)
{
    setCheckable(true);
    setObjectName(QStringLiteral("trace %1").arg(index));
}

QSize TraceChip::sizeHint() const
{
    return { leastWidth, scaled(targetSize, m_scale) };
}

void TraceChip::setScale(double scale)
{
    m_scale = scale;
    updateGeometry();
    update();
}

void TraceChip::show(const Content &content)
{
    const QString said =
        content.name + QStringLiteral(", ") + content.lines.join(QStringLiteral(", "));
    const bool isSame = said == accessibleName() && content.isOld == m_content.isOld;
    m_content = content;
    if (isSame)
        return;
    setText(content.name);
    setAccessibleName(said);
    update();
}

void TraceChip::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    drawGround(painter, look.card);
    // The selected one has its colour all around.
    const QColor colour = traceColour(look, m_index);
    painter.fillRect(0, 0, scaled(bar, m_scale), height(), colour);
    if (isChecked() && !hasFocus()) {
        painter.setPen(QPen(colour, 3));
        painter.drawRect(rect().adjusted(1, 1, -2, -2));
    }
    const QRect inner = rect().adjusted(scaled(bar, m_scale) + margin, 3, -margin, -3);
    const int lines = static_cast<int>(m_content.lines.size());
    const int least = scaled(nameSize, m_scale);
    const int nameHeight = lines > 1 ? inner.height() / (lines + 1) : inner.height() * 3 / 8;
    painter.setFont(sized(font(), least));
    painter.setPen(look.text);
    drawFitting(painter, { inner.left(), inner.top(), inner.width(), nameHeight }, least,
                m_content.name, scaled(nameSize, m_scale) - 2);
    painter.setFont(sized(font(), least, lines < 2));
    painter.setPen(m_content.isOld ? look.faded : look.text);
    const int height = (inner.height() - nameHeight) / std::max(1, lines);
    for (int line = 0; line < lines; ++line) {
        const QRect place(inner.left(), inner.top() + nameHeight + line * height, inner.width(),
                          height);
        const int size = scaled(lines > 1 ? smallSize : valueSize, m_scale);
        drawFitting(painter, place, size, m_content.lines.at(line), least - 2);
    }
}

} // namespace dx4::panel
