// SPDX-License-Identifier: MIT
// The alarms as a list.
#pragma once

#include "panel/alarms/alarm_book.h"
#include "panel/alarms/alarm_words.h"

#include <QAbstractListModel>

namespace dx4::panel {

class AlarmModel : public QAbstractListModel {
    Q_OBJECT

public:
    /// @param book  outlives the model
    AlarmModel(const AlarmBook &book, AlarmWords words, QObject *parent = nullptr);

    /// Takes what the book has now, if it has changed.
    void refresh(journal::Time now);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    const Alarm &alarm(int row) const { return m_alarms.at(row); }

    /// -1 for one that is not there.
    int rowOf(const AlarmKey &key) const;

private:
    const AlarmBook &m_book;
    const AlarmWords m_words;
    QVector<Alarm> m_alarms;
    quint64 m_version = 0;
    journal::Time m_now = 0;
};

} // namespace dx4::panel
