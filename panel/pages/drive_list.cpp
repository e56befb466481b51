// SPDX-License-Identifier: MIT
// The cards of all drives, as many at once as there is room for.
#include "panel/pages/drive_list.h"

#include "panel/widgets/look.h"

#include <algorithm>

#include <utility>

namespace dx4::panel {
namespace {

// Of the page's scale: cards may be as small as that before they are shown in turns, and in steps
// of that.
constexpr double smallestCards = 0.75;
constexpr double scaleStep = 0.125;
constexpr double widestPart = 0.45; // of the page, with more than one column

} // namespace

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

QSize DriveList::cardSize(double scale)
{
    return { static_cast<int>(DriveCard::plainSize.width() * scale),
             static_cast<int>(DriveCard::plainSize.height() * scale) };
}

/// As many columns of cards of this scale as the page has room for, and none too many.
void DriveList::takeScale(QSize page, double scale)
{
    m_scale = scale;
    const int budget = static_cast<int>(page.width() * widestPart);
    const int most = std::max(1, (budget + targetGap) / (cardSize().width() + targetGap));
    const int inColumn = rows(page.height());
    const int wanted = (static_cast<int>(m_cards.size()) + inColumn - 1) / inColumn;
    m_columns = std::clamp(wanted, 1, most);
}

void DriveList::setRoom(QSize page, double scale)
{
    const double smallest = std::max(1.0, scale * smallestCards);
    double tried = scale;
    takeScale(page, tried);
    while (m_columns * rows(page.height()) < m_cards.size() && tried > smallest) {
        tried = std::max(smallest, tried - scaleStep);
        takeScale(page, tried);
    }
    for (DriveCard *card : std::as_const(m_cards))
        card->setScale(m_scale);
    setFixedWidth(m_columns * (cardSize().width() + targetGap) - targetGap);
    choose(m_chosen);
}

int DriveList::rows(int height) const
{
    return std::max(1, (height + targetGap) / (cardSize().height() + targetGap));
}

int DriveList::cardsOfPage() const
{
    const int all = m_columns * rows(height());
    if (all >= m_cards.size())
        return all;
    return m_columns * rows(height() - m_up->sizeHint().height() - targetGap);
}

void DriveList::refresh()
{
    for (int i = 0; i < m_cards.size(); ++i)
        m_cards[i]->show(m_line.drive(i));
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
        card->setGeometry(place % m_columns * (size.width() + targetGap),
                          place / m_columns * (size.height() + targetGap), size.width(),
                          size.height());
    }
    arrangeTurns(cardsOfPage() < m_cards.size(), last);
}

void DriveList::arrangeTurns(bool isNeeded, int last)
{
    const int half = (width() - targetGap) / 2;
    const int high = m_up->sizeHint().height();
    m_up->setGeometry(0, height() - high, half, high);
    m_down->setGeometry(half + targetGap, height() - high, half, high);
    m_up->setVisible(isNeeded);
    m_down->setVisible(isNeeded);
    m_up->setEnabled(m_first > 0);
    m_down->setEnabled(last < m_cards.size());
}

} // namespace dx4::panel
