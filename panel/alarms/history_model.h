// SPDX-License-Identifier: MIT
// What the journal tells of the past, newest first, as it is scrolled to.
#pragma once

#include "journal/journal_reader.h"
#include "panel/alarms/alarm_words.h"

#include <QAbstractListModel>

#include <functional>
#include <optional>

namespace dx4::panel {

/// What a read of events ended with.
struct EventsRead {
    QVector<journal::Event> events;
    QString trouble; ///< why there are none; empty: they were read
};

/// Reads events and gives them on the thread of the window, later.
using ReadEvents =
    std::function<void(const journal::EventQuery &, std::function<void(const EventsRead &)>)>;

/// Which events are wanted.
struct HistoryFilter {
    QVector<journal::EventKind> kinds; ///< empty: all
    int station = 0; ///< 0: all
    QString text; ///< somewhere in the event's; empty: all
    journal::Time span = 0; ///< up to now, ms; 0: all

    bool isAll() const { return kinds.isEmpty() && station == 0 && text.isEmpty() && span == 0; }
};

class HistoryModel : public QAbstractListModel {
    Q_OBJECT

public:
    static constexpr int pageSize = 100;
    static constexpr int mostRows = 5000; ///< the filter reaches further back

    HistoryModel(ReadEvents read, AlarmWords words, QObject *parent = nullptr);

    /// Reads anew.
    void show(const HistoryFilter &filter, journal::Time now);

    const HistoryFilter &filter() const { return m_filter; }

    /// The same events, as one query for an export.
    journal::EventQuery query() const;

    bool isReading() const { return m_isReading; }
    const QString &trouble() const { return m_trouble; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

Q_SIGNALS:
    /// A read has ended.
    void readEnded();

private:
    void readMore();
    void take(int asked, const EventsRead &read);

    const ReadEvents m_read;
    const AlarmWords m_words;
    HistoryFilter m_filter;
    journal::Time m_now = 0;
    QVector<journal::Event> m_events;
    QString m_trouble;
    bool m_isReading = false;
    bool m_isMore = false;
    int m_asked = 0; // answers to earlier questions are left alone
};

} // namespace dx4::panel
