// SPDX-License-Identifier: MIT
// Puts what a line showed around a fault into a file.
#pragma once

#include "host/config/config.h"
#include "panel/alarms/alarm_book.h"
#include "panel/alarms/journal_desk.h"
#include "panel/past/past_record.h"

#include <QObject>

#include <functional>
#include <map>

namespace dx4::panel {

/// What snapshots need beside the values.
struct PastPort {
    QString folder; ///< of the files; made where it is missing
    QString line; ///< what the line is called in the journal
    journal::Time began = 0; ///< when the program was started
    host::Config config; ///< names of drives, words of states and faults
    /// Frames from one moment to another; null: the line does not give them.
    std::function<QVector<PastFrame>(journal::Time from, journal::Time to)> frames;
    std::function<void(const journal::Event &)> note; ///< keeps an event; null: none are kept
};

/// "fault-20260301-120005-station-3-code-2.json", by UTC.
QString pastFileName(const PastRecord &record);

/// Removes the oldest files of that kind of name, so that so many stay.
void keepNewest(const QString &folder, int most);

/// Writes on the thread of the desk, and keeps the newest files.
class PastKeeper : public QObject {
    Q_OBJECT

public:
    static constexpr int mostFiles = 50;

    /// @param desk  outlives the keeper, or ends its work with it
    PastKeeper(JournalDesk &desk, PastPort port, QObject *parent = nullptr);

    void keep(const dx4::panel::PastRecord &record);

    /// Where the snapshot of an alarm is, or what became of it; empty: there is none.
    QString textOf(const Alarm &alarm) const;

Q_SIGNALS:
    /// @param error  why there is no file; empty: it is there
    void kept(const QString &file, const QString &error);

private:
    PastRecord completed(PastRecord record) const;
    void take(const PastRecord &record, const QString &file, const QString &error);

    JournalDesk &m_desk;
    const PastPort m_port;
    std::map<AlarmKey, QString> m_texts;
};

} // namespace dx4::panel
