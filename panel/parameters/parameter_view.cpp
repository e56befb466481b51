// SPDX-License-Identifier: MIT
// The table of the parameters, for fingers.
#include "panel/parameters/parameter_view.h"

#include "panel/widgets/look.h"
#include "panel/widgets/stop_button.h"
#include "panel/widgets/value_label.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int dragFrom = 20; // px that a finger moves before it drags
constexpr int margin = 6; // px
constexpr int boxShare = 162; // percent of the size of the text
constexpr int leastText = 9; // px
constexpr int pendingWidth = 6; // px of the bar at the left of what is to be written
constexpr int plainRowHeight = 40; // px times the scale, at least a target

int widthOf(int column)
{
    switch (column) {
    case ParameterTable::Tick:
        return targetSize;
    case ParameterTable::Number:
        return 56;
    case ParameterTable::First:
    case ParameterTable::Second:
        return 102;
    case ParameterTable::Class:
        return 80;
    case ParameterTable::Written:
        return 64;
    default:
        return 0; // what is left
    }
}

/// A smaller font, of captions and words.
QFont smaller(const QFont &font)
{
    return sized(font, font.pixelSize() * 85 / 100);
}

/// Has a text fit by its size: a value that is cut off is another value.
void fit(QPainter &painter, const QString &text, int width)
{
    QFont font = painter.font();
    while (font.pixelSize() > leastText && QFontMetrics(font).horizontalAdvance(text) > width)
        font.setPixelSize(font.pixelSize() - 1);
    painter.setFont(font);
}

/// Captions in the colours of the page.
class Captions : public QHeaderView {
public:
    explicit Captions(QWidget *parent)
        : QHeaderView(Qt::Horizontal, parent)
    {
    }

    QSize sizeHint() const override
    {
        return { QHeaderView::sizeHint().width(), fontMetrics().height() + margin };
    }

protected:
    void paintSection(QPainter *painter, const QRect &place, int section) const override
    {
        const Look look = lookOf(palette());
        const int alignment =
            model()->headerData(section, Qt::Horizontal, Qt::TextAlignmentRole).toInt();
        painter->fillRect(place, look.window);
        painter->setFont(smaller(font()));
        painter->setPen(look.faded);
        painter->drawText(place.adjusted(margin, 0, -margin, 0), alignment,
                          model()->headerData(section, Qt::Horizontal).toString());
        painter->setPen(look.edge);
        painter->drawLine(place.bottomLeft(), place.bottomRight());
    }
};

/// Draws one cell. What differs is bold as well as named, as colours alone do not tell.
class RowDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        const Look look = lookOf(option.palette);
        painter->save();
        painter->fillRect(option.rect, look.card);
        if (index.column() == ParameterTable::Tick)
            drawTick(*painter, option, index, look);
        else
            drawText(*painter, option, index, look);
        painter->setPen(look.edge);
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        if ((option.state & QStyle::State_HasFocus) != 0) {
            painter->setPen(QPen(look.text, 2));
            painter->drawRect(option.rect.adjusted(1, 1, -2, -2));
        }
        painter->restore();
    }

private:
    static void drawTick(QPainter &painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index, const Look &look)
    {
        const QRect &cell = option.rect;
        const int size = option.font.pixelSize();
        const bool isPending = index.data(ParameterTable::PendingRole).toBool();
        if (isPending)
            painter.fillRect(cell.left(), cell.top(), pendingWidth, cell.height(), look.accent);
        if (!index.data(ParameterTable::CanTickRole).toBool())
            return;
        const int boxSize = size * boxShare / 100;
        QRect box(0, 0, boxSize, boxSize);
        box.moveCenter(cell.center() + QPoint(pendingWidth / 2, 0));
        painter.setPen(QPen(look.text, 2));
        painter.setBrush(isPending ? look.accent : look.window);
        painter.drawRect(box);
        if (!isPending)
            return;
        painter.setPen(QPen(look.accentText, 4));
        const QPoint low(box.left() + boxSize * 2 / 5, box.bottom() - boxSize / 5);
        painter.drawLine(box.left() + boxSize / 6, box.center().y(), low.x(), low.y());
        painter.drawLine(low.x(), low.y(), box.right() - boxSize / 7, box.top() + boxSize / 5);
    }

    static void drawText(QPainter &painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index, const Look &look)
    {
        const int column = index.column();
        const bool isValue = column == ParameterTable::First || column == ParameterTable::Second;
        const int is = index.data(ParameterTable::ClassRole).toInt();
        const bool isOther = is >= 0 && is != static_cast<int>(RowClass::Equal)
            && is != static_cast<int>(RowClass::NotRead);
        const bool isBold = column == ParameterTable::Number || (isValue && isOther);
        const bool isWord = column == ParameterTable::Class;
        painter.setFont(isWord ? smaller(option.font)
                               : sized(option.font, option.font.pixelSize(), isBold));
        painter.setPen(index.data(ParameterTable::OldRole).toBool() ? look.faded : look.text);
        const QRect inner = option.rect.adjusted(margin, 0, -margin, 0);
        if (column == ParameterTable::Name)
            return drawName(painter, option, inner, index.data().toString());
        const bool isRight = isValue || column == ParameterTable::Written;
        fit(painter, index.data().toString(), inner.width());
        painter.drawText(
            inner, static_cast<int>((isRight ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter),
            index.data().toString());
    }

    /// A long name takes two smaller lines.
    static void drawName(QPainter &painter, const QStyleOptionViewItem &option, const QRect &place,
                         const QString &name)
    {
        if (painter.fontMetrics().horizontalAdvance(name) > place.width())
            painter.setFont(smaller(option.font));
        painter.drawText(place,
                         static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter)
                             | static_cast<int>(Qt::TextWordWrap),
                         name);
    }
};

} // namespace

ParameterView::ParameterView(ParameterTable &table, QWidget *parent)
    : QTableView(parent)
    , m_table(table)
{
    setObjectName(QStringLiteral("parameters table"));
    setHorizontalHeader(new Captions(this));
    setModel(&table);
    setItemDelegate(new RowDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabKeyNavigation(false);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setMinimumSectionSize(targetSize);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setFocusPolicy(Qt::NoFocus);
    connect(&table, &QAbstractItemModel::modelReset, this, &ParameterView::arrange);
    arrange();
}

void ParameterView::setScale(double scale)
{
    m_scale = scale;
    arrange();
}

void ParameterView::setSides(bool hasFirst, bool hasSecond)
{
    if (m_hasSides && m_hasFirst == hasFirst && m_hasSecond == hasSecond)
        return;
    m_hasSides = true;
    m_hasFirst = hasFirst;
    m_hasSecond = hasSecond;
    const bool isCompared = hasFirst && hasSecond;
    setColumnHidden(ParameterTable::Tick, !isCompared);
    setColumnHidden(ParameterTable::First, !hasFirst);
    setColumnHidden(ParameterTable::Second, !hasSecond && hasFirst);
    setColumnHidden(ParameterTable::Class, !isCompared);
    arrange();
}

void ParameterView::setEmptyText(const QString &text)
{
    if (m_emptyText == text)
        return;
    m_emptyText = text;
    viewport()->update();
}

void ParameterView::arrange()
{
    verticalHeader()->setDefaultSectionSize(
        std::max(targetSize, static_cast<int>(plainRowHeight * m_scale)));
    int left = viewport()->width();
    for (int column = 0; column < m_table.columnCount(); ++column) {
        if (column == ParameterTable::Name || isColumnHidden(column))
            continue;
        const int width = static_cast<int>(widthOf(column) * m_scale);
        setColumnWidth(column, width);
        left -= width;
    }
    setColumnWidth(ParameterTable::Name, std::max(targetSize, left));
}

void ParameterView::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    arrange();
}

int ParameterView::rowsShown() const
{
    return std::max(1, viewport()->height() / verticalHeader()->defaultSectionSize());
}

void ParameterView::step(int pages)
{
    verticalScrollBar()->setValue(verticalScrollBar()->value() + pages * rowsShown());
}

bool ParameterView::canStep(int pages) const
{
    const QScrollBar *bar = verticalScrollBar();
    return pages < 0 ? bar->value() > bar->minimum() : bar->value() < bar->maximum();
}

void ParameterView::mousePressEvent(QMouseEvent *event)
{
    m_isPressed = event->button() == Qt::LeftButton;
    m_isDragged = false;
    m_pressedAt = event->pos();
    m_firstAtPress = verticalScrollBar()->value();
}

void ParameterView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_isPressed)
        return;
    const int moved = event->pos().y() - m_pressedAt.y();
    m_isDragged = m_isDragged || std::abs(moved) >= dragFrom;
    if (m_isDragged)
        verticalScrollBar()->setValue(m_firstAtPress
                                      - moved / verticalHeader()->defaultSectionSize());
}

void ParameterView::mouseReleaseEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->pos());
    const bool isTap =
        m_isPressed && !m_isDragged && index.isValid() && index.row() == indexAt(m_pressedAt).row();
    m_isPressed = false;
    if (isTap)
        tap(index);
}

/// Two taps are two taps.
void ParameterView::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event);
}

void ParameterView::tap(const QModelIndex &index)
{
    setCurrentIndex(index);
    const bool isTick =
        index.column() == ParameterTable::Tick && index.data(ParameterTable::CanTickRole).toBool();
    if (isTick)
        toggle(index.row());
    else
        Q_EMIT opened(m_table.addressOf(index.row()));
}

void ParameterView::toggle(int row)
{
    const QModelIndex tick = m_table.index(row, ParameterTable::Tick);
    const bool isOn = tick.data(ParameterTable::PendingRole).toBool();
    m_table.setData(tick, isOn ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

void ParameterView::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex at = currentIndex();
    if (!isPressKey(*event) || !at.isValid())
        return QTableView::keyPressEvent(event);
    if (event->key() == Qt::Key_Space)
        toggle(at.row());
    else
        Q_EMIT opened(m_table.addressOf(at.row()));
}

void ParameterView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (m_table.rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(lookOf(palette()).faded);
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

} // namespace dx4::panel
