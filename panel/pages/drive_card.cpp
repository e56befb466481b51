// SPDX-License-Identifier: MIT
// A drive among others: its name, its frequency, its state.
#include "panel/pages/drive_card.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QPainter>

namespace dx4::panel {
namespace {

constexpr int margin = 10; // px
constexpr int nameSize = 16; // px, as those below at a scale of 1
constexpr int frequencySize = 26;
constexpr int stateSize = 14;
constexpr int chosenWidth = 6; // px of the bar at the left of the chosen one

int scaled(int size, double scale)
{
    return static_cast<int>(size * scale);
}

QColor colourOf(const Shown &shown, const Look &look)
{
    return shown.trust == Shown::Trust::Fresh ? look.text : look.faded;
}

void drawElided(QPainter &painter, const QRect &place, int flags, const QString &text)
{
    const QString fitting = painter.fontMetrics().elidedText(text, Qt::ElideRight, place.width());
    painter.drawText(place, flags | Qt::AlignVCenter, fitting);
}

} // namespace

DriveCard::DriveCard(QWidget *parent)
    : FlatButton(QString(), parent)
{
    setCheckable(true);
}

void DriveCard::setScale(double scale)
{
    m_scale = scale;
    update();
}

void DriveCard::show(const DriveShown &drive)
{
    const QString state = drive.isFaulty ? drive.fault.fullText() : drive.state.fullText();
    const QString said =
        QStringLiteral("%1, %2, %3").arg(drive.name, drive.frequency.fullText(), state);
    const bool isSame = said == accessibleName() && drive.isFaulty == m_drive.isFaulty;
    m_drive = drive;
    if (isSame)
        return;
    setText(drive.name);
    setAccessibleName(said);
    update();
}

void DriveCard::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    drawGround(painter, look.card);
    if (isChecked())
        painter.fillRect(0, 0, chosenWidth, height(), look.accent);
    const QRect inner = rect().adjusted(margin + chosenWidth / 2, 4, -margin, -4);
    const int nameHeight = inner.height() * 3 / 10;
    const int stateHeight = inner.height() * 3 / 10;
    drawName(painter, look, { inner.left(), inner.top(), inner.width(), nameHeight });
    drawFrequency(painter, look,
                  { inner.left(), inner.top() + nameHeight, inner.width(),
                    inner.height() - nameHeight - stateHeight });
    drawState(painter, look,
              { inner.left(), inner.bottom() + 1 - stateHeight, inner.width(), stateHeight });
}

void DriveCard::drawName(QPainter &painter, const Look &look, const QRect &place) const
{
    painter.setFont(sized(font(), scaled(nameSize, m_scale), true));
    painter.setPen(look.text);
    drawElided(painter, place, Qt::AlignLeft, m_drive.name);
}

void DriveCard::drawFrequency(QPainter &painter, const Look &look, const QRect &place) const
{
    painter.setFont(sized(font(), scaled(frequencySize, m_scale)));
    painter.setPen(colourOf(m_drive.frequency, look));
    const QString text = m_drive.frequency.text();
    drawElided(painter, place, Qt::AlignLeft, text);
    const int used = painter.fontMetrics().horizontalAdvance(text) + margin;
    painter.setFont(sized(font(), scaled(stateSize, m_scale)));
    drawElided(painter, place.adjusted(used, 0, 0, 0), Qt::AlignRight, m_drive.frequency.age);
}

void DriveCard::drawState(QPainter &painter, const Look &look, const QRect &place) const
{
    painter.setFont(sized(font(), scaled(stateSize, m_scale), m_drive.isFaulty));
    if (!m_drive.isFaulty) {
        painter.setPen(colourOf(m_drive.state, look));
        return drawElided(painter, place, Qt::AlignLeft, m_drive.state.text());
    }
    painter.fillRect(place, look.faultGround);
    painter.setPen(look.faultText);
    drawElided(painter, place.adjusted(4, 0, -4, 0), Qt::AlignLeft, m_drive.fault.fullText());
}

} // namespace dx4::panel
