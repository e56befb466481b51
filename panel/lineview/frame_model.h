// SPDX-License-Identifier: MIT
// The frames of a line as rows.
#pragma once

#include "panel/lineview/frame_log.h"

#include <QAbstractTableModel>
#include <QLocale>

namespace dx4::panel {

/// What a row of a table says beside its text.
enum TableRole {
    IsBadRole = Qt::UserRole, ///< bool: something went wrong
    IsFaintRole, ///< bool: beside the point
};

class FrameModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { TimeColumn, WordsColumn, TurnaroundColumn, ColumnCount };

    explicit FrameModel(QObject *parent = nullptr);

    /// Shows these instead.
    void setLines(const QVector<FrameLine> &lines);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString textOf(const FrameLine &line, int column) const;

    const QLocale m_locale;
    QVector<FrameLine> m_lines;
};

} // namespace dx4::panel
