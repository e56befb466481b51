// SPDX-License-Identifier: MIT
// The alarms as a list.
#include "panel/alarms/alarm_model.h"

#include "host/base/length.h"
#include "panel/alarms/list_rows.h"

#include <utility>

namespace dx4::panel {
namespace {

RowMark markOf(AlarmState state)
{
    switch (state) {
    case AlarmState::Active:
        return RowMark::Alert;
    case AlarmState::Acknowledged:
        return RowMark::Seen;
    case AlarmState::Returned:
        return RowMark::Over;
    case AlarmState::Normal:
        break;
    }
    return RowMark::None;
}

bool hasSameRows(const QVector<Alarm> &a, const QVector<Alarm> &b)
{
    bool isSame = a.size() == b.size();
    for (int row = 0; isSame && row < a.size(); ++row)
        isSame = a.at(row).key == b.at(row).key;
    return isSame;
}

} // namespace

AlarmModel::AlarmModel(const AlarmBook &book, AlarmWords words, QObject *parent)
    : QAbstractListModel(parent)
    , m_book(book)
    , m_words(std::move(words))
{
}

void AlarmModel::refresh(journal::Time now)
{
    m_now = now;
    if (m_version == m_book.version())
        return;
    m_version = m_book.version();
    QVector<Alarm> newest = m_book.list();
    if (hasSameRows(newest, m_alarms)) {
        m_alarms = std::move(newest);
        if (!m_alarms.isEmpty())
            Q_EMIT dataChanged(index(0), index(host::lengthOf(m_alarms) - 1));
        return;
    }
    beginResetModel();
    m_alarms = std::move(newest);
    endResetModel();
}

int AlarmModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : host::lengthOf(m_alarms);
}

QVariant AlarmModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Alarm &alarm = m_alarms.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return m_words.heading(alarm);
    case DetailRole:
        return AlarmWords::detail(alarm);
    case TimeRole:
        return timeText(alarm.since, m_now);
    case MarkRole:
        return static_cast<int>(markOf(alarm.state));
    case FullTextRole:
        return QStringLiteral("%1\n%2, %3")
            .arg(m_words.fullText(alarm), dateText(alarm.since), AlarmWords::detail(alarm));
    default:
        return {};
    }
}

int AlarmModel::rowOf(const AlarmKey &key) const
{
    for (int row = 0; row < m_alarms.size(); ++row) {
        if (m_alarms.at(row).key == key)
            return row;
    }
    return -1;
}

} // namespace dx4::panel
