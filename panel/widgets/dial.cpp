// SPDX-License-Identifier: MIT
// A quantity on half a circle, with what it is set to.
#include "panel/widgets/dial.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace dx4::panel {
namespace {

// Sizes in px, at a scale of 1.
constexpr int plainWidth = 150;
constexpr int plainHeight = 104;
constexpr int captionSize = 13;
constexpr int numberSize = 20;
constexpr int arcWidth = 14;
constexpr int markRoom = 8; // outside of the arc, for the head of the mark

constexpr double halfTurn = 180.0; // degrees
constexpr int sixteenths = 16; // of a degree, as the painter counts them
constexpr double ends[] = { 60.0, 120.0, 240.0, 400.0, 700.0 };

bool isKnown(const Shown &shown)
{
    return shown.trust != Shown::Trust::Gone;
}

/// The font, smaller where the text is wider than the room.
QFont fittingFont(const QFont &font, const QString &text, double room)
{
    const double wanted = QFontMetrics(font).horizontalAdvance(text);
    if (wanted <= room)
        return font;
    return sized(font, static_cast<int>(font.pixelSize() * room / wanted));
}

QPointF onCircle(const QRectF &circle, double angle, double radius)
{
    const double radians = angle * std::acos(-1.0) / halfTurn;
    return circle.center() + QPointF(std::cos(radians), -std::sin(radians)) * radius;
}

} // namespace

Dial::Dial(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void Dial::show(const Shown &actual, const Shown &set)
{
    const QString said = tr("Set: %1").arg(set.fullText());
    const bool isSame = said == accessibleName() && actual.fullText() == m_actual.fullText()
        && actual.trust == m_actual.trust && set.trust == m_set.trust;
    m_actual = actual;
    m_set = set;
    if (isSame)
        return;
    setAccessibleName(said);
    update();
}

void Dial::setScale(double scale)
{
    m_scale = scale;
    updateGeometry();
    update();
}

QSize Dial::minimumSizeHint() const
{
    return { static_cast<int>(plainWidth * m_scale), static_cast<int>(plainHeight * m_scale) };
}

double Dial::highest() const
{
    const double most = std::max(isKnown(m_actual) ? m_actual.quantity : 0.0,
                                 isKnown(m_set) ? m_set.quantity : 0.0);
    for (double end : ends) {
        if (most <= end)
            return end;
    }
    return std::ceil(most / 1000.0) * 1000.0;
}

QRectF Dial::circle() const
{
    const double below = captionSize * m_scale * 1.5;
    const double around = (markRoom + arcWidth / 2.0) * m_scale;
    const double radius = std::min(width() / 2.0, height() - below) - around;
    const QPointF centre(width() / 2.0, height() - below);
    return { centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius };
}

double Dial::angleOf(double value) const
{
    return halfTurn * (1.0 - std::clamp(value / highest(), 0.0, 1.0));
}

void Dial::drawArc(QPainter &painter, const Look &look) const
{
    const int whole = static_cast<int>(halfTurn) * sixteenths;
    painter.setPen(QPen(look.edge, arcWidth * m_scale, Qt::SolidLine, Qt::FlatCap));
    painter.drawArc(circle(), 0, whole);
    if (!isKnown(m_actual))
        return;
    const bool isFresh = m_actual.trust == Shown::Trust::Fresh;
    const double filled = halfTurn - angleOf(m_actual.quantity);
    painter.setPen(
        QPen(isFresh ? look.accent : look.faded, arcWidth * m_scale, Qt::SolidLine, Qt::FlatCap));
    painter.drawArc(circle(), whole, -static_cast<int>(filled * sixteenths));
}

void Dial::drawMark(QPainter &painter, const Look &look) const
{
    if (!isKnown(m_set))
        return;
    const double angle = angleOf(m_set.quantity);
    const double radius = circle().width() / 2.0;
    const double half = arcWidth * m_scale / 2.0;
    const double head = markRoom * m_scale;
    const QColor colour = m_set.trust == Shown::Trust::Fresh ? look.text : look.faded;
    painter.setPen(QPen(colour, 3 * m_scale, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(onCircle(circle(), angle, radius - half),
                     onCircle(circle(), angle, radius + half));
    const QPointF tip = onCircle(circle(), angle, radius + half - 1);
    const QPointF end = onCircle(circle(), angle, radius + half + head);
    const QPointF side = QPointF(-(end - tip).y(), (end - tip).x()) * 0.4;
    QPainterPath path(tip);
    path.lineTo(end + side);
    path.lineTo(end - side);
    painter.fillPath(path, colour);
}

void Dial::drawTexts(QPainter &painter, const Look &look) const
{
    const QRectF arc = circle();
    const double line = captionSize * m_scale * 1.5;
    const double across = arcWidth * m_scale * 3;
    const QRectF left(arc.left() - across / 2, arc.center().y(), across, line);
    painter.setFont(sized(font(), static_cast<int>(captionSize * m_scale)));
    painter.setPen(look.faded);
    painter.drawText(left, Qt::AlignCenter, QStringLiteral("0"));
    painter.drawText(left.translated(arc.width(), 0), Qt::AlignCenter,
                     QLocale().toString(highest(), 'f', 0));
    const double number = numberSize * m_scale * 1.3;
    const QRectF middle(arc.left(), arc.center().y() - number, arc.width(), number);
    painter.drawText(QRectF(arc.left(), middle.top() - line, arc.width(), line), Qt::AlignCenter,
                     tr("Set"));
    const QFont large = sized(font(), static_cast<int>(numberSize * m_scale));
    painter.setFont(fittingFont(large, m_set.text(), arc.width() - 2 * arcWidth * m_scale));
    painter.setPen(m_set.trust == Shown::Trust::Fresh ? look.text : look.faded);
    painter.drawText(middle, Qt::AlignCenter, m_set.text());
}

void Dial::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawArc(painter, look);
    drawMark(painter, look);
    drawTexts(painter, look);
}

} // namespace dx4::panel
