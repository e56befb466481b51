// SPDX-License-Identifier: MIT
// The rows of a model, as many at once as there is room for.
#include "panel/alarms/row_list.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QAbstractItemModel>
#include <QLabel>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int plainSideWidth = 84; // px, at a scale of 1
constexpr int placeSize = 14; // px, at a scale of 1
constexpr int emptySize = 18; // px, at a scale of 1

RowText rowText(const QModelIndex &index)
{
    RowText text;
    text.mark = static_cast<RowMark>(index.data(MarkRole).toInt());
    text.heading = index.data(Qt::DisplayRole).toString();
    text.detail = index.data(DetailRole).toString();
    text.time = index.data(TimeRole).toString();
    text.full = index.data(FullTextRole).toString();
    return text;
}

} // namespace

RowList::RowList(QAbstractItemModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_empty(new QLabel(this))
    , m_place(new QLabel(this))
    , m_up(new FlatButton(tr("Up"), this))
    , m_down(new FlatButton(tr("Down"), this))
{
    m_empty->setObjectName(QStringLiteral("empty"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_place->setObjectName(QStringLiteral("place"));
    m_place->setAlignment(Qt::AlignCenter);
    m_place->setWordWrap(true);
    connect(m_up, &FlatButton::clicked, this, [this] { turn(-1); });
    connect(m_down, &FlatButton::clicked, this, [this] { turn(1); });
    connect(&model, &QAbstractItemModel::modelReset, this, &RowList::takeReset);
    connect(&model, &QAbstractItemModel::rowsInserted, this, &RowList::arrange);
    connect(&model, &QAbstractItemModel::dataChanged, this, &RowList::arrange);
}

int RowList::rowHeight() const
{
    return static_cast<int>(RowButton::plainHeight * m_scale);
}

int RowList::sideWidth() const
{
    return static_cast<int>(plainSideWidth * m_scale);
}

int RowList::rowsOfPage() const
{
    return std::max(1, (height() + targetGap) / (rowHeight() + targetGap));
}

int RowList::shownRows() const
{
    return std::min(rowsOfPage(), m_model.rowCount() - m_first);
}

QSize RowList::minimumSizeHint() const
{
    return { 4 * sideWidth(), 2 * targetSize + 2 * targetGap + placeSize };
}

void RowList::setScale(double scale)
{
    m_scale = scale;
    m_empty->setFont(sized(font(), static_cast<int>(emptySize * scale)));
    m_place->setFont(sized(font(), static_cast<int>(placeSize * scale)));
    for (FlatButton *button : { m_up, m_down })
        button->setFont(sized(font(), static_cast<int>(emptySize * scale)));
    for (RowButton *button : std::as_const(m_buttons))
        button->setScale(scale);
    updateGeometry();
    arrange();
}

void RowList::setEmptyText(const QString &text)
{
    if (m_empty->text() != text)
        m_empty->setText(text);
}

void RowList::choose(int row, View view)
{
    const bool isNew = m_chosen != row;
    if (!isNew && view == View::Stays)
        return;
    m_chosen = row;
    if (row >= 0 && view == View::Moves)
        m_first = row / rowsOfPage() * rowsOfPage();
    arrange();
    if (isNew)
        Q_EMIT chosenChanged(row);
}

void RowList::turn(int pages)
{
    const int next = m_first + pages * rowsOfPage();
    if (next >= 0 && next < m_model.rowCount())
        m_first = next;
    const bool isNearEnd = m_first + 2 * rowsOfPage() >= m_model.rowCount();
    if (isNearEnd && m_model.canFetchMore({}))
        m_model.fetchMore({});
    arrange();
}

void RowList::takeReset()
{
    m_chosen = -1;
    m_first = std::max(0, std::min(m_first, m_model.rowCount() - 1) / rowsOfPage() * rowsOfPage());
    arrange();
    Q_EMIT chosenChanged(-1);
}

void RowList::resizeEvent(QResizeEvent *)
{
    m_first = m_first / rowsOfPage() * rowsOfPage();
    arrange();
}

void RowList::fill(RowButton &button, int row)
{
    button.show(rowText(m_model.index(row, 0)));
    button.setChecked(row == m_chosen);
}

void RowList::arrange()
{
    const int count = std::max(0, shownRows());
    while (m_buttons.size() < count) {
        auto *button = new RowButton(this);
        const int place = static_cast<int>(m_buttons.size());
        button->setObjectName(QStringLiteral("row %1").arg(place));
        button->setScale(m_scale);
        connect(button, &FlatButton::clicked, this, [this, place] { choose(m_first + place); });
        m_buttons.append(button);
    }
    const bool isLong = m_model.rowCount() > rowsOfPage();
    const int wide = isLong ? width() - sideWidth() - targetGap : width();
    for (int place = 0; place < m_buttons.size(); ++place) {
        RowButton *button = m_buttons[place];
        button->setVisible(place < count);
        button->setGeometry(0, place * (rowHeight() + targetGap), wide, rowHeight());
        if (place < count)
            fill(*button, m_first + place);
    }
    m_empty->setGeometry(rect());
    m_empty->setVisible(m_model.rowCount() == 0);
    arrangeSide();
}

void RowList::arrangeSide()
{
    const bool isLong = m_model.rowCount() > rowsOfPage();
    const int left = width() - sideWidth();
    const int textHeight = m_place->fontMetrics().height() * 2 + 4;
    const int high = (height() - textHeight - 2 * targetGap) / 2;
    m_up->setGeometry(left, 0, sideWidth(), high);
    m_place->setGeometry(left, high + targetGap, sideWidth(), textHeight);
    m_down->setGeometry(left, height() - high, sideWidth(), high);
    for (QWidget *widget : { static_cast<QWidget *>(m_up), static_cast<QWidget *>(m_down),
                             static_cast<QWidget *>(m_place) })
        widget->setVisible(isLong);
    const int last = m_first + shownRows();
    const bool isMore = m_model.canFetchMore({});
    m_place->setText(
        tr("%1-%2\nof %3")
            .arg(m_first + 1)
            .arg(last)
            .arg(isMore ? tr("%1+").arg(m_model.rowCount()) : QString::number(m_model.rowCount())));
    m_up->setEnabled(m_first > 0);
    m_down->setEnabled(last < m_model.rowCount() || isMore);
}

} // namespace dx4::panel
