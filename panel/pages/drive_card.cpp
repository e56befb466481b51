// SPDX-License-Identifier: MIT
// A drive among others: its name, its frequency, its state.
#include "panel/pages/drive_card.h"

#include "panel/widgets/fit_text.h"
#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QPainter>

namespace dx4::panel {
namespace {

constexpr int margin = 10; // px
// Texts and what is below each other, px at a scale of 1: the three make up a card.
constexpr int nameSize = 16;
constexpr int nameHeight = 21;
constexpr int frequencySize = 24;
constexpr int frequencyHeight = 27;
constexpr int stateSize = 13;
constexpr int stateHeight = 34;
constexpr int stateLines = 2;
constexpr int chosenWidth = 6; // px of the bar at the left of the chosen one

int scaled(int size, double scale)
{
    return static_cast<int>(size * scale);
}

QColor colourOf(const Shown &shown, const Look &look)
{
    return shown.trust == Shown::Trust::Fresh ? look.text : look.faded;
}

void drawFitting(QPainter &painter, const QRect &place, int flags, const QString &text,
                 int lines = 1)
{
    painter.drawText(place, flags, fittingText(painter.fontMetrics(), text, place.width(), lines));
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

/// What a tired person has to see of it: a fault, else a command that went wrong, else the state.
QString DriveCard::lastLine() const
{
    if (m_drive.isFaulty)
        return m_drive.fault.fullText();
    return m_drive.isWayBad ? m_drive.way : m_drive.state.text();
}

void DriveCard::show(const DriveShown &drive)
{
    const QString before = accessibleName();
    const bool isOther = drive.isFaulty != m_drive.isFaulty || drive.isWayBad != m_drive.isWayBad
        || drive.frequency.trust != m_drive.frequency.trust
        || drive.state.trust != m_drive.state.trust;
    m_drive = drive;
    const QString said =
        QStringLiteral("%1, %2, %3").arg(drive.name, drive.frequency.fullText(), lastLine());
    if (said == before && !isOther)
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
    const int left = margin + chosenWidth / 2;
    QRect place(left, 3, width() - left - margin, scaled(nameHeight, m_scale));
    drawName(painter, look, place);
    place.moveTop(place.bottom() + 1);
    place.setHeight(scaled(frequencyHeight, m_scale));
    drawFrequency(painter, look, place);
    place.moveTop(place.bottom() + 1);
    place.setHeight(scaled(stateHeight, m_scale));
    drawState(painter, look, place);
}

void DriveCard::drawName(QPainter &painter, const Look &look, const QRect &place) const
{
    painter.setFont(sized(font(), scaled(nameSize, m_scale), true));
    painter.setPen(look.text);
    drawFitting(painter, place, Qt::AlignLeft | Qt::AlignVCenter, m_drive.name);
}

void DriveCard::drawFrequency(QPainter &painter, const Look &look, const QRect &place) const
{
    painter.setFont(sized(font(), scaled(frequencySize, m_scale)));
    painter.setPen(colourOf(m_drive.frequency, look));
    const QString text = m_drive.frequency.text();
    drawFitting(painter, place, Qt::AlignLeft | Qt::AlignVCenter, text);
    const int used = painter.fontMetrics().horizontalAdvance(text) + margin;
    painter.setFont(sized(font(), scaled(stateSize, m_scale)));
    drawFitting(painter, place.adjusted(used, 0, 0, 0), Qt::AlignRight | Qt::AlignVCenter,
                m_drive.frequency.age);
}

void DriveCard::drawState(QPainter &painter, const Look &look, const QRect &place) const
{
    const bool isBad = m_drive.isFaulty || m_drive.isWayBad;
    painter.setFont(sized(font(), scaled(stateSize, m_scale), isBad));
    painter.setPen(m_drive.isWayBad ? look.warning : colourOf(m_drive.state, look));
    if (!m_drive.isFaulty)
        return drawFitting(painter, place, Qt::AlignLeft | Qt::AlignTop, lastLine(), stateLines);
    painter.fillRect(place, look.faultGround);
    painter.setPen(look.faultText);
    drawFitting(painter, place.adjusted(4, 0, -4, 0), Qt::AlignLeft | Qt::AlignVCenter, lastLine(),
                stateLines);
}

} // namespace dx4::panel
