// SPDX-License-Identifier: MIT
// Rows of text that do not change, as a model.
#include "panel/past/text_rows.h"

#include "host/base/length.h"
#include "panel/alarms/list_rows.h"

#include <utility>

namespace dx4::panel {

TextRows::TextRows(QVector<TextRow> rows, QObject *parent)
    : QAbstractListModel(parent)
    , m_rows(std::move(rows))
{
}

int TextRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : host::lengthOf(m_rows);
}

QVariant TextRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const TextRow &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return row.heading;
    case DetailRole:
        return row.detail;
    case TimeRole:
        return row.time;
    case FullTextRole:
        return QStringLiteral("%1, %2, %3").arg(row.time, row.heading, row.detail);
    default:
        return {};
    }
}

} // namespace dx4::panel
