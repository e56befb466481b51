// SPDX-License-Identifier: MIT
// Reads a journal, while others write it.
#pragma once

#include "journal/history.h"
#include "journal/journal_file.h"
#include "journal/records.h"

#include <QVector>

#include <limits>
#include <memory>
#include <optional>

namespace dx4::journal {

struct Window {
    Time from = 0; ///< the first millisecond
    Time to = std::numeric_limits<Time>::max(); ///< behind the last one
};

/// Which events are wanted; as it is made, the newest of all.
struct EventQuery {
    Window window;
    QVector<EventKind> kinds; ///< empty: all
    QString line; ///< empty: all
    int station = 0; ///< 0: all
    QString contains; ///< text somewhere in the event's; case counts for other letters than a to z
    qint64 before = std::numeric_limits<qint64>::max(); ///< an id: only what came earlier
    qint64 after = 0; ///< an id: only what came later
    int most = 1000;
    bool isOldestFirst = false;
};

struct HistoryQuery {
    RegisterKey at;
    Window window;
    int mostRows = 1000; ///< the finest level that has no more in the window is read
};

/// What a register was within one row of a level, as quantities.
struct HistoryPoint {
    qint64 start = 0; ///< of the program
    Time time = 0; ///< begin of the row
    double lowest = 0;
    double highest = 0;
    double last = 0;
    qint64 count = 0; ///< changes that came
    Quality quality = Quality::Good; ///< the worst
};

struct History {
    Time width = 0; ///< of a row
    QString unit; ///< of the newest row
    QVector<HistoryPoint> points; ///< in the order in which they were written; of rows that touch
                                  ///< the window
};

/// A connection to read with, used on the thread that opened it. Calls give nothing where the file
/// cannot be read; trouble() says why.
class JournalReader {
public:
    /// @param patience  for another program's lock, in milliseconds
    static std::unique_ptr<JournalReader> open(const QString &path, Trouble *trouble,
                                               int patience = 5000);

    const Trouble &trouble() const { return m_database->trouble(); }

    std::optional<QVector<Event>> events(const EventQuery &query);

    /// What a register was in a window. Of rows that are gone from a level the next coarser one
    /// that has them is read.
    std::optional<History> history(const HistoryQuery &query);

    /// How often registers were written, those that were written most first.
    std::optional<QVector<WearCount>> wear();

    /// All registers that have a history, ascending, under each name and scaling that they had.
    std::optional<QVector<Series>> series();

    std::optional<QVector<JournalStart>> starts();

private:
    using SeriesById = std::map<qint64, Series>;

    explicit JournalReader(std::unique_ptr<Database> database);

    bool readSeries(const RegisterKey &at, SeriesById *found);
    std::optional<int> levelOf(const HistoryQuery &query);
    bool readPoints(const HistoryQuery &query, const SeriesById &series, int level,
                    History *history);
    bool readRows(const Window &window, const QString &ids, int level,
                  std::map<HistoryKey, HistoryRow> *rows);

    const std::unique_ptr<Database> m_database;
};

} // namespace dx4::journal
