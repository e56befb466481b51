// SPDX-License-Identifier: MIT
// Values over time at several zoom levels.
#pragma once

#include "journal/records.h"

#include <array>
#include <map>
#include <tuple>

class QSqlQuery;

namespace dx4::journal {

class Database;

constexpr int levelCount = 4;

/// Width of one row of each level: a second, ten seconds, two minutes, half an hour. Each is a
/// multiple of the one before.
constexpr std::array<Time, levelCount> levelWidths = { 1'000, 10'000, 120'000, 1'800'000 };

/// A register that stays as it is has a row at least that often: where there is none for longer,
/// nobody looked, or its value was not known.
constexpr Time restateMs = 120'000;

QString levelTable(int level);

/// Beginning of the row that a time belongs to.
constexpr Time rowBegin(Time time, Time width)
{
    return time - ((time % width) + width) % width;
}

/// The finest level of which a span has no more than so many rows; the coarsest where none has.
int levelFor(Time span, int mostRows);

/// What a series was in one row of a level.
struct HistoryRow {
    int lowest = 0;
    int highest = 0;
    int last = 0;
    qint64 count = 0;
    int quality = 0;

    /// Takes in what came after it.
    void add(const HistoryRow &later);
};

/// start, time and series of a row.
using HistoryKey = std::tuple<qint64, Time, qint64>;

/// Names the columns that addRow() reads, in their order.
QString historyColumns();

/// Puts a row of a table to what is known of its row of this width.
void addRow(const QSqlQuery &query, Time width, std::map<HistoryKey, HistoryRow> *rows);

/// Writes the rows of the finest level, and has each row go into the next coarser level exactly
/// once. A row of a coarser level may be written in parts; whoever reads puts them together.
class HistoryWriter {
public:
    explicit HistoryWriter(Database &database);

    /// Call within a transaction, with times that do not descend within one start.
    bool add(qint64 start, qint64 series, Time time, const HistoryRow &row);

    /// To be called when a transaction was undone: what was rolled up in it will be once more.
    void forget() { m_start = 0; }

    /// Has the rows of a level up to this one go into the next level.
    bool rollUp(int level, qint64 upTo);

private:
    bool rollUpEndedRows(qint64 start, Time time);

    Database &m_database;
    qint64 m_start = 0; ///< of the newest row; 0: not known
    Time m_time = 0; ///< of the newest row
};

} // namespace dx4::journal
