// SPDX-License-Identifier: MIT
// A table for fingers: it turns by pages, and nothing in it has to be hit.
#include "panel/lineview/line_table.h"

#include "panel/lineview/frame_model.h"
#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int cellMargin = 3; // px on each side of a text, as headings have it
constexpr int columnGap = 6; // px between two texts besides
constexpr int rowMargin = 4; // px above and below
constexpr int headScale = 85; // % of the size of the text

/// Paints a text and nothing else: no focus, no selection.
class Cell : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        const Look look = lookOf(option.palette);
        const bool isBad = index.data(IsBadRole).toBool();
        const bool isFaint = index.data(IsFaintRole).toBool();
        const QRect place = option.rect.adjusted(cellMargin, 0, -cellMargin, 0);
        const QString text = option.fontMetrics.elidedText(index.data(Qt::DisplayRole).toString(),
                                                           Qt::ElideRight, place.width());
        painter->setFont(option.font);
        painter->setPen(isBad ? look.warning : isFaint ? look.faded : look.text);
        painter->drawText(place, index.data(Qt::TextAlignmentRole).toInt() | Qt::TextSingleLine,
                          text);
    }
};

} // namespace

LineTable::LineTable(QAbstractItemModel &model, QWidget *parent)
    : QTableView(parent)
{
    setModel(&model);
    setItemDelegate(new Cell(this));
    setShowGrid(false);
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setCornerButtonEnabled(false);
    setTabKeyNavigation(false); // the key leaves the table
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(1);
}

void LineTable::setTextSize(int size)
{
    if (font().pixelSize() == size)
        return;
    setFont(sized(font(), size));
    horizontalHeader()->setFont(sized(font(), size * headScale / 100));
    arrangeRows();
    arrangeColumns();
}

void LineTable::setColumns(int stretched, const QStringList &texts)
{
    m_stretched = stretched;
    m_texts = texts;
    arrangeColumns();
}

/// Rows share the height, so that none is cut.
void LineTable::arrangeRows()
{
    const int least = fontMetrics().height() + 2 * rowMargin;
    const int rows = std::max(1, viewport()->height() / least);
    verticalHeader()->setDefaultSectionSize(std::max(least, viewport()->height() / rows));
}

int LineTable::neededWidth(int column) const
{
    const QFontMetrics head(horizontalHeader()->font());
    int width = fontMetrics().horizontalAdvance(m_texts.value(column));
    const QStringList lines = model()
                                  ->headerData(column, Qt::Horizontal, Qt::DisplayRole)
                                  .toString()
                                  .split(QLatin1Char('\n'));
    for (const QString &line : lines)
        width = std::max(width, head.horizontalAdvance(line));
    return width + 2 * cellMargin + columnGap;
}

void LineTable::arrangeColumns()
{
    int left = viewport()->width();
    for (int column = 0; column < model()->columnCount(); ++column) {
        if (column == m_stretched)
            continue;
        setColumnWidth(column, neededWidth(column));
        left -= columnWidth(column);
    }
    setColumnWidth(m_stretched, std::max(left, neededWidth(m_stretched)));
}

void LineTable::turn(int pages)
{
    QScrollBar *bar = verticalScrollBar();
    bar->setValue(bar->value() + pages * std::max(1, bar->pageStep() - 1));
}

bool LineTable::canTurnUp() const
{
    return verticalScrollBar()->value() > verticalScrollBar()->minimum();
}

bool LineTable::canTurnDown() const
{
    return verticalScrollBar()->value() < verticalScrollBar()->maximum();
}

void LineTable::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    arrangeRows();
    arrangeColumns();
}

} // namespace dx4::panel
