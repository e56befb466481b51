// SPDX-License-Identifier: MIT
// Rows of text that do not change, as a model.
#pragma once

#include <QAbstractListModel>
#include <QVector>

namespace dx4::panel {

struct TextRow {
    QString heading;
    QString detail;
    QString time;
};

class TextRows : public QAbstractListModel {
    Q_OBJECT

public:
    explicit TextRows(QVector<TextRow> rows, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    const QVector<TextRow> m_rows;
};

} // namespace dx4::panel
