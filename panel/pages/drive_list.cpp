// SPDX-License-Identifier: MIT
// The cards of all drives, as many at once as there is room for.
#include "panel/pages/drive_list.h"

#include "panel/widgets/look.h"

#include <algorithm>

namespace dx4::panel {

DriveList::DriveList(PanelLine &line, QWidget *parent)
    : QWidget(parent)
    , m_line(line)
    , m_up(new FlatButton(tr("Up"), this))
    , m_down(new FlatButton(tr("Down"), this))
{
    for (int i = 0; i < line.driveCount(); ++i) {
        auto *card = new DriveCard(this);
        card->setObjectName(QStringLiteral("card %1").arg(i));
        connect(card, &FlatButton::clicked, this, [this, i] { Q_EMIT chosen(i); });
        m_cards.append(card);
    }
    connect(m_up, &FlatButton::clicked, this, [this] { turn(-1); });
    connect(m_down, &FlatButton::clicked, this, [this] { turn(1); });
}

QSize DriveList::cardSize() const
{
    return { static_cast<int>(DriveCard::plainSize.width() * m_scale),
             static_cast<int>(DriveCard::plainSize.height() * m_scale) };
}

QSize DriveList::minimumSizeHint() const
{
    return cardSize() + QSize(0, targetSize + targetGap);
}

int DriveList::columns() const
{
    return std::max(1, (width() + targetGap) / (cardSize().width() + targetGap));
}

int DriveList::rows(int height) const
{
    return std::max(1, (height + targetGap) / (cardSize().height() + targetGap));
}

int DriveList::cardsOfPage() const
{
    const int all = columns() * rows(height());
    if (all >= m_cards.size())
        return all;
    return columns() * rows(height() - targetSize - targetGap);
}

void DriveList::refresh()
{
    for (int i = 0; i < m_cards.size(); ++i)
        m_cards[i]->show(m_line.drive(i));
}

void DriveList::setScale(double scale)
{
    m_scale = scale;
    for (DriveCard *card : std::as_const(m_cards))
        card->setScale(scale);
    updateGeometry();
    arrange();
}

void DriveList::choose(int index)
{
    m_chosen = index;
    arrange();
    m_first = index / cardsOfPage() * cardsOfPage();
    arrange();
}

void DriveList::turn(int pages)
{
    const int next = m_first + pages * cardsOfPage();
    if (next < 0 || next >= m_cards.size())
        return;
    m_first = next;
    arrange();
}

void DriveList::resizeEvent(QResizeEvent *)
{
    choose(m_chosen);
}

void DriveList::arrange()
{
    const QSize size = cardSize();
    const int last = std::min<int>(m_first + cardsOfPage(), static_cast<int>(m_cards.size()));
    for (int i = 0; i < m_cards.size(); ++i) {
        const int place = i - m_first;
        DriveCard *card = m_cards[i];
        card->setChecked(i == m_chosen);
        card->setVisible(i >= m_first && i < last);
        card->setGeometry(place % columns() * (size.width() + targetGap),
                          place / columns() * (size.height() + targetGap), size.width(),
                          size.height());
    }
    arrangeTurns(cardsOfPage() < m_cards.size(), last);
}

void DriveList::arrangeTurns(bool isNeeded, int last)
{
    const int half = (cardSize().width() - targetGap) / 2;
    const int top = height() - targetSize;
    m_up->setGeometry(0, top, half, targetSize);
    m_down->setGeometry(half + targetGap, top, half, targetSize);
    m_up->setVisible(isNeeded);
    m_down->setVisible(isNeeded);
    m_up->setEnabled(m_first > 0);
    m_down->setEnabled(last < m_cards.size());
}

} // namespace dx4::panel
