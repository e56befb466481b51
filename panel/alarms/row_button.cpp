// SPDX-License-Identifier: MIT
// One row of a list, for fingers.
#include "panel/alarms/row_button.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QPainter>
#include <QPainterPath>

#include <tuple>

namespace dx4::panel {
namespace {

constexpr int headingSize = 16; // px, as those below at a scale of 1
constexpr int detailSize = 14;
constexpr int markSize = 26;
constexpr int margin = 8;
constexpr int chosenWidth = 6; // px of the bar at the left of the chosen one

QPainterPath triangle(const QRectF &place)
{
    QPainterPath path;
    path.moveTo(place.center().x(), place.top());
    path.lineTo(place.bottomRight());
    path.lineTo(place.bottomLeft());
    path.closeSubpath();
    return path;
}

/// The stroke and the dot of an exclamation mark.
void drawCall(QPainter &painter, const QRectF &place, const QColor &colour)
{
    const double width = place.width() / 9.0;
    const double middle = place.center().x();
    painter.fillRect(QRectF(middle - width / 2, place.top() + place.height() * 0.34, width,
                            place.height() * 0.32),
                     colour);
    painter.fillRect(QRectF(middle - width / 2, place.top() + place.height() * 0.74, width, width),
                     colour);
}

void drawElided(QPainter &painter, const QRect &place, int flags, const QString &text)
{
    const QString line = QString(text).replace(QLatin1Char('\n'), QLatin1Char(' '));
    painter.drawText(place, flags | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(line, Qt::ElideRight, place.width()));
}

} // namespace

bool operator==(const RowText &a, const RowText &b)
{
    return std::tie(a.mark, a.heading, a.detail, a.time, a.full)
        == std::tie(b.mark, b.heading, b.detail, b.time, b.full);
}

void drawMark(QPainter &painter, RowMark mark, const QRectF &place, const QColor &colour,
              const QColor &ground)
{
    if (mark == RowMark::None)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = place.width() / 10.0;
    const QRectF inner = place.adjusted(line / 2, line / 2, -line / 2, -line / 2);
    painter.setPen(QPen(colour, line, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(mark == RowMark::Alert ? QBrush(colour) : QBrush(Qt::NoBrush));
    if (mark == RowMark::Over)
        painter.drawEllipse(inner);
    else
        painter.drawPath(triangle(inner));
    const QRectF call = mark == RowMark::Over ? inner.translated(0, -inner.height() * 0.08) : inner;
    drawCall(painter, call, mark == RowMark::Alert ? ground : colour);
    painter.restore();
}

RowButton::RowButton(QWidget *parent)
    : FlatButton(QString(), parent)
{
    setCheckable(true);
}

void RowButton::setScale(double scale)
{
    m_scale = scale;
    update();
}

void RowButton::show(const RowText &row)
{
    if (row == m_row)
        return;
    m_row = row;
    setText(row.heading);
    setAccessibleName(row.full);
    update();
}

void RowButton::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    const auto at = [this](int size) { return static_cast<int>(size * m_scale); };
    QPainter painter(this);
    drawGround(painter, look.card);
    if (isChecked())
        painter.fillRect(0, 0, chosenWidth, height(), look.accent);
    QRect inner = rect().adjusted(margin + chosenWidth / 2, 3, -margin, -3);
    if (m_row.mark != RowMark::None) {
        const int size = at(markSize);
        const QColor colour = m_row.mark == RowMark::Alert ? look.warning : look.text;
        drawMark(painter, m_row.mark, QRectF(inner.left(), (height() - size) / 2.0, size, size),
                 colour, look.card);
        inner.setLeft(inner.left() + size + at(margin));
    }
    painter.setFont(sized(font(), at(detailSize)));
    const int timeWidth = painter.fontMetrics().horizontalAdvance(m_row.time) + at(margin);
    const int half = inner.height() / 2;
    const QRect upper(inner.left(), inner.top(), inner.width() - timeWidth, half);
    painter.setPen(look.faded);
    painter.drawText(QRect(inner.left(), inner.top(), inner.width(), half),
                     Qt::AlignRight | Qt::AlignVCenter, m_row.time);
    drawElided(painter, QRect(inner.left(), inner.top() + half, inner.width(), half), Qt::AlignLeft,
               m_row.detail);
    const bool isLoud = m_row.mark == RowMark::Alert || m_row.mark == RowMark::Over;
    painter.setFont(sized(font(), at(headingSize), isLoud));
    painter.setPen(look.text);
    drawElided(painter, upper, Qt::AlignLeft, m_row.heading);
}

} // namespace dx4::panel
