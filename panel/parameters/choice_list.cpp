// SPDX-License-Identifier: MIT
// Things to choose from, as many at once as there is room for.
#include "panel/parameters/choice_list.h"

#include "panel/widgets/look.h"

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int turnWidth = 2 * targetSize; // px
constexpr int columnWidth = 14; // heights of the text

} // namespace

ChoiceList::ChoiceList(QWidget *parent)
    : QWidget(parent)
    , m_up(new FlatButton(tr("Up"), this))
    , m_down(new FlatButton(tr("Down"), this))
{
    connect(m_up, &FlatButton::clicked, this, [this] { turn(-1); });
    connect(m_down, &FlatButton::clicked, this, [this] { turn(1); });
}

void ChoiceList::setChoices(const QVector<Choice> &choices)
{
    qDeleteAll(m_buttons);
    m_buttons.clear();
    for (int i = 0; i < choices.size(); ++i) {
        auto *button = new TwoLineButton(this);
        button->setObjectName(QStringLiteral("choice %1").arg(i));
        button->setLines(choices.at(i).name, choices.at(i).state);
        // Later: what is done with the choice may replace the list, and this button with it.
        connect(
            button, &FlatButton::clicked, this, [this, i] { Q_EMIT chosen(i); },
            Qt::QueuedConnection);
        m_buttons.append(button);
    }
    m_first = 0;
    arrange();
}

QSize ChoiceList::minimumSizeHint() const
{
    return { 3 * targetSize + targetGap + turnWidth, 2 * cellHeight() + targetGap };
}

int ChoiceList::columns() const
{
    const int wanted = columnWidth * fontMetrics().height();
    return std::max(1, (width() - turnWidth) / (wanted + targetGap));
}

int ChoiceList::cellHeight() const
{
    return std::max(targetSize, fontMetrics().height() * 5 / 2);
}

int ChoiceList::perPage() const
{
    return columns() * std::max(1, (height() + targetGap) / (cellHeight() + targetGap));
}

void ChoiceList::turn(int pages)
{
    const int next = m_first + pages * perPage();
    if (next < 0 || next >= m_buttons.size())
        return;
    m_first = next;
    arrange();
}

void ChoiceList::resizeEvent(QResizeEvent *)
{
    m_first = m_first / perPage() * perPage();
    arrange();
}

void ChoiceList::arrange()
{
    const int across = (width() - turnWidth - targetGap) / columns() - targetGap;
    const int last = std::min<int>(m_first + perPage(), static_cast<int>(m_buttons.size()));
    for (int i = 0; i < m_buttons.size(); ++i) {
        const int place = i - m_first;
        m_buttons[i]->setGeometry(place % columns() * (across + targetGap),
                                  place / columns() * (cellHeight() + targetGap), across,
                                  cellHeight());
        m_buttons[i]->setVisible(i >= m_first && i < last);
    }
    const bool isNeeded = perPage() < m_buttons.size();
    const int left = width() - turnWidth;
    m_up->setGeometry(left, 0, turnWidth, cellHeight());
    m_down->setGeometry(left, height() - cellHeight(), turnWidth, cellHeight());
    m_up->setVisible(isNeeded);
    m_down->setVisible(isNeeded);
    m_up->setEnabled(m_first > 0);
    m_down->setEnabled(last < m_buttons.size());
}

} // namespace dx4::panel
