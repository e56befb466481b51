// SPDX-License-Identifier: MIT
// Counters of the line as rows: all, each station, and its blocks.
#pragma once

#include "panel/lineview/counts_window.h"
#include "panel/lineview/frame_model.h"

namespace dx4::panel {

/// One row.
struct CountsRow {
    QString name; ///< "All", "3 Conveyor", "read D 0 to 9"
    bool isBlock = false;
    host::RequestCounts counts;
};

class CountsModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column {
        NameColumn,
        SentColumn,
        GoodColumn,
        SilenceColumn,
        TruncatedColumn,
        CrcColumn,
        ForeignColumn,
        WrongColumn,
        ExceptionColumn,
        RetryColumn,
        GivenUpColumn,
        NotAskedColumn,
        ColumnCount
    };

    explicit CountsModel(QObject *parent = nullptr);

    /// Shows these. Rows that only count on stay where they are.
    void setRows(const QVector<CountsRow> &rows);

    /// What is shown is old: nothing was heard of the line for a while.
    void setOld(bool isOld);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    bool hasSameNames(const QVector<CountsRow> &rows) const;
    void tellChanged();

    const QLocale m_locale;
    QVector<CountsRow> m_rows;
    bool m_isOld = false;
};

/// "D 0-9", "F c.13", "CW".
QString rangeText(const QString &regType, int address, int count);

/// "read D 0-9", "write CW".
QString blockName(const host::BlockKey &block);

} // namespace dx4::panel
