// SPDX-License-Identifier: MIT
// Values over time at several zoom levels.
#include "journal/history.h"

#include "journal/database.h"

#include <algorithm>

namespace dx4::journal {
namespace {

bool insertRow(Database &database, int level, const HistoryKey &key, const HistoryRow &row)
{
    const auto &[start, time, series] = key;
    return database.run(
        QStringLiteral("INSERT INTO %1 (start, time, series, lowest, highest, last,"
                       " count, quality) VALUES (?, ?, ?, ?, ?, ?, ?, ?)")
            .arg(levelTable(level)),
        { start, time, series, row.lowest, row.highest, row.last, row.count, row.quality });
}

} // namespace

QString levelTable(int level)
{
    return QStringLiteral("history_%1").arg(level);
}

int levelFor(Time span, int mostRows)
{
    const auto fits = [&](Time width) {
        return span / width + (span % width > 0 ? 1 : 0) <= mostRows;
    };
    const auto found = std::find_if(levelWidths.begin(), levelWidths.end(), fits);
    return found == levelWidths.end() ? levelCount - 1
                                      : static_cast<int>(found - levelWidths.begin());
}

void HistoryRow::add(const HistoryRow &later)
{
    lowest = std::min(lowest, later.lowest);
    highest = std::max(highest, later.highest);
    last = later.last;
    count += later.count;
    quality = std::max(quality, later.quality);
}

QString historyColumns()
{
    return QStringLiteral("start, time, series, lowest, highest, last, count, quality");
}

void addRow(const QSqlQuery &query, Time width, std::map<HistoryKey, HistoryRow> *rows)
{
    const HistoryKey key { query.value(0).toLongLong(),
                           rowBegin(query.value(1).toLongLong(), width),
                           query.value(2).toLongLong() };
    const HistoryRow row { query.value(3).toInt(), query.value(4).toInt(), query.value(5).toInt(),
                           query.value(6).toLongLong(), query.value(7).toInt() };
    const auto [place, isNew] = rows->emplace(key, row);
    if (!isNew)
        place->second.add(row);
}

HistoryWriter::HistoryWriter(Database &database)
    : m_database(database)
{
}

bool HistoryWriter::add(qint64 start, qint64 series, Time time, const HistoryRow &row)
{
    if (!rollUpEndedRows(start, time))
        return false;
    m_start = start;
    m_time = time;
    return insertRow(m_database, 0, { start, time, series }, row);
}

/// What another program writes into the file meanwhile is rolled up along, maybe before its row of
/// the coarser level is over: that row then has another part.
bool HistoryWriter::rollUpEndedRows(qint64 start, Time time)
{
    for (int level = 0; level + 1 < levelCount; ++level) {
        const Time width = levelWidths.at(static_cast<std::size_t>(level + 1));
        if (start == m_start && rowBegin(time, width) == rowBegin(m_time, width))
            return true;
        const auto newest =
            m_database.number(QStringLiteral("SELECT max(id) FROM %1").arg(levelTable(level)));
        if (newest && !rollUp(level, *newest))
            return false;
    }
    return true;
}

bool HistoryWriter::rollUp(int level, qint64 upTo)
{
    const auto done =
        m_database.number(QStringLiteral("SELECT upto FROM rolled WHERE level = ?"), { level });
    if (!done || *done >= upTo)
        return done.has_value();
    const Time width = levelWidths.at(static_cast<std::size_t>(level + 1));
    std::map<HistoryKey, HistoryRow> rows;
    const bool isRead = m_database.each(
        QStringLiteral("SELECT %1 FROM %2 WHERE id > ? AND id <= ? ORDER BY id")
            .arg(historyColumns(), levelTable(level)),
        { *done, upTo }, [&](const QSqlQuery &query) { addRow(query, width, &rows); });
    for (const auto &[key, row] : rows) {
        if (!isRead || !insertRow(m_database, level + 1, key, row))
            return false;
    }
    return isRead
        && m_database.run(QStringLiteral("UPDATE rolled SET upto = ? WHERE level = ?"),
                          { upTo, level });
}

} // namespace dx4::journal
