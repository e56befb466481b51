// SPDX-License-Identifier: MIT
// What the pages ask of the journal, answered by a desk.
#pragma once

#include "panel/alarms/alarm_watch.h"
#include "panel/alarms/history_model.h"
#include "panel/alarms/journal_desk.h"

namespace dx4::panel {

/// How saving a file ended.
struct SaveEnd {
    enum class Kind {
        Saved,
        IsThere, ///< a file has that name and stays as it is
        Failed, ///< no file was made; one that was there stays as it is
    };
    Kind kind = Kind::Saved;
    QString error; ///< why it failed
};

/// Saves the events of a query as a table, and tells the end on the thread of the window.
///
/// @param mayReplace  a file that has that name
using SaveEvents = std::function<void(const journal::EventQuery &, const QString &file,
                                      bool mayReplace, std::function<void(const SaveEnd &)>)>;

/// All of them: the desk outlives what they are given to.
ReadEvents readingWith(JournalDesk &desk);
SaveEvents savingWith(JournalDesk &desk);

/// Has the alarms of the time before put into the watch, when they have been read.
///
/// @param watch   outlives the desk
/// @param line    what the line is called in the journal
/// @param before  begin of this run
void restoreAlarms(JournalDesk &desk, AlarmWatch &watch, const QString &line, journal::Time before);

/// Saves the events of a query in a file.
SaveEnd saveCsv(journal::JournalReader &reader, const journal::EventQuery &query,
                const QString &file, bool mayReplace);

} // namespace dx4::panel
