// SPDX-License-Identifier: MIT
// What the journal tells of the past, newest first, as it is scrolled to.
#include "panel/alarms/history_model.h"

#include "host/base/length.h"
#include "panel/alarms/list_rows.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace dx4::panel {

HistoryModel::HistoryModel(ReadEvents read, AlarmWords words, QObject *parent)
    : QAbstractListModel(parent)
    , m_read(std::move(read))
    , m_words(std::move(words))
{
}

void HistoryModel::show(const HistoryFilter &filter, journal::Time now)
{
    beginResetModel();
    m_filter = filter;
    m_now = now;
    m_events.clear();
    m_trouble.clear();
    m_isMore = false;
    endResetModel();
    readMore();
}

journal::EventQuery HistoryModel::query() const
{
    journal::EventQuery query;
    query.kinds = m_filter.kinds;
    query.station = m_filter.station;
    query.contains = m_filter.text;
    if (m_filter.span != 0)
        query.window.from = m_now - m_filter.span;
    return query;
}

void HistoryModel::readMore()
{
    journal::EventQuery wanted = query();
    wanted.most = std::min(pageSize, mostRows - host::lengthOf(m_events));
    if (!m_events.isEmpty())
        wanted.before = m_events.constLast().id;
    m_isReading = true;
    const int asked = ++m_asked;
    m_read(wanted, [self = QPointer<HistoryModel>(this), asked](const EventsRead &read) {
        if (self)
            self->take(asked, read);
    });
}

void HistoryModel::take(int asked, const EventsRead &read)
{
    if (asked != m_asked)
        return;
    m_isReading = false;
    m_trouble = read.trouble;
    const int count = host::lengthOf(read.events);
    m_isMore = count == pageSize && m_events.size() + count < mostRows;
    if (count > 0) {
        const int first = host::lengthOf(m_events);
        beginInsertRows({}, first, first + count - 1);
        m_events += read.events;
        endInsertRows();
    }
    Q_EMIT readEnded();
}

int HistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : host::lengthOf(m_events);
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const journal::Event &event = m_events.at(index.row());
    QString where = AlarmWords::kindText(event.kind);
    if (event.station != 0)
        where = tr("%1, %2").arg(where, m_words.drive(event.station));
    switch (role) {
    case Qt::DisplayRole:
        return event.text;
    case DetailRole:
        return where;
    case TimeRole:
        return timeText(event.time, m_now);
    case MarkRole:
        return 0;
    case FullTextRole:
        return QStringLiteral("%1\n%2\n%3").arg(dateText(event.time), where, event.text);
    default:
        return {};
    }
}

bool HistoryModel::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && m_isMore && !m_isReading;
}

void HistoryModel::fetchMore(const QModelIndex &parent)
{
    if (canFetchMore(parent))
        readMore();
}

} // namespace dx4::panel
