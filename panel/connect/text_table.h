// SPDX-License-Identifier: MIT
// Rows of texts.
#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <QVector>

namespace dx4::panel {

/// One row; what is marked is drawn plain, all else faded.
struct TableRow {
    QStringList cells;
    bool isMarked = true;

    bool operator==(const TableRow &other) const
    {
        return cells == other.cells && isMarked == other.isMarked;
    }
};

class TextTable : public QAbstractTableModel {
    Q_OBJECT

public:
    /// @param numbers  columns whose texts stand at the right
    TextTable(const QStringList &headings, const QVector<int> &numbers, QObject *parent = nullptr);

    void setRows(const QVector<TableRow> &rows);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const QStringList m_headings;
    const QVector<int> m_numbers;
    QVector<TableRow> m_rows;
};

} // namespace dx4::panel
