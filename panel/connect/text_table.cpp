// SPDX-License-Identifier: MIT
// Rows of texts.
#include "panel/connect/text_table.h"

#include "host/base/length.h"
#include "panel/lineview/frame_model.h"

namespace dx4::panel {

TextTable::TextTable(const QStringList &headings, const QVector<int> &numbers, QObject *parent)
    : QAbstractTableModel(parent)
    , m_headings(headings)
    , m_numbers(numbers)
{
}

void TextTable::setRows(const QVector<TableRow> &rows)
{
    if (m_rows == rows)
        return;
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int TextTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : host::lengthOf(m_rows);
}

int TextTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : host::lengthOf(m_headings);
}

QVariant TextTable::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const TableRow &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return row.cells.value(index.column());
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            (m_numbers.contains(index.column()) ? Qt::AlignRight : Qt::AlignLeft)
            | Qt::AlignVCenter);
    case IsFaintRole:
        return !row.isMarked;
    default:
        return {};
    }
}

QVariant TextTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>((m_numbers.contains(section) ? Qt::AlignRight : Qt::AlignLeft)
                                | Qt::AlignBottom);
    return role == Qt::DisplayRole ? QVariant(m_headings.value(section)) : QVariant();
}

} // namespace dx4::panel
