// SPDX-License-Identifier: MIT
// Keeps a journal within its bounds.
#include "journal/retention.h"

#include "journal/database.h"

#include <algorithm>

namespace dx4::journal {
namespace {

constexpr qint64 leastBytes = 1 << 20; // the empty tables take a tenth of it
constexpr int startRows = 10'000;
constexpr qint64 someRows = 256; // that are removed at once for want of bytes

/// First and last row of a table whose ids have no gaps.
struct Ends {
    qint64 first = 0;
    qint64 last = 0;
};

Ends endsOf(Database &database, const QString &table)
{
    const auto first = database.number(QStringLiteral("SELECT min(id) FROM %1").arg(table));
    const auto last = database.number(QStringLiteral("SELECT max(id) FROM %1").arg(table));
    return { first.value_or(1), last.value_or(0) };
}

} // namespace

Retention::Retention(Database &database, HistoryWriter &writer, const Bounds &bounds)
    : m_database(database)
    , m_writer(writer)
    , m_bounds(bounds)
{
}

bool Retention::trim(const std::set<EventKind> &kinds)
{
    for (const EventKind kind : kinds) {
        if (!trimEvents(kind))
            return false;
    }
    return trimHistory() && trimStarts() && trimBytes();
}

/// The newest of each kind stays: ids that were given out are never given again.
bool Retention::trimEvents(EventKind kind)
{
    const auto firstBeyond = m_database.number(
        QStringLiteral("SELECT id FROM events WHERE kind = ? ORDER BY id DESC LIMIT 1 OFFSET ?"),
        { static_cast<int>(kind), std::max(m_bounds.eventRows, 1) });
    return !firstBeyond
        || m_database.run(QStringLiteral("DELETE FROM events WHERE kind = ? AND id <= ?"),
                          { static_cast<int>(kind), *firstBeyond });
}

bool Retention::trimStarts()
{
    const qint64 newest = endsOf(m_database, QStringLiteral("starts")).last;
    return m_database.run(QStringLiteral("DELETE FROM starts WHERE id <= ?"),
                          { newest - startRows });
}

bool Retention::trimHistory()
{
    for (int level = 0; level < levelCount; ++level) {
        const Ends ends = endsOf(m_database, levelTable(level));
        const int rows = std::max(m_bounds.historyRows.at(static_cast<std::size_t>(level)), 1);
        if (ends.last - ends.first + 1 > rows && !removeHistory(level, ends.last - rows))
            return false;
    }
    return true;
}

/// No row goes before the next level has it.
bool Retention::removeHistory(int level, qint64 upTo)
{
    const bool isKept = level + 1 == levelCount || m_writer.rollUp(level, upTo);
    return isKept
        && m_database.run(QStringLiteral("DELETE FROM %1 WHERE id <= ?").arg(levelTable(level)),
                          { upTo });
}

bool Retention::trimBytes()
{
    bool isAnyLeft = true;
    while (isAnyLeft && bytes() > std::max(m_bounds.bytes, leastBytes)) {
        if (!removeSome(&isAnyLeft))
            return false;
    }
    return true;
}

/// What the file takes, without pages that are free to be used again.
qint64 Retention::bytes()
{
    const qint64 pages = m_database.number(QStringLiteral("PRAGMA page_count")).value_or(0);
    const qint64 unused = m_database.number(QStringLiteral("PRAGMA freelist_count")).value_or(0);
    return (pages - unused) * m_database.number(QStringLiteral("PRAGMA page_size")).value_or(0);
}

/// From the finest level that has rows to give; its peaks are in the next one.
bool Retention::removeSome(bool *isAnyLeft)
{
    for (int level = 0; level < levelCount; ++level) {
        const Ends ends = endsOf(m_database, levelTable(level));
        if (ends.last > ends.first)
            return removeHistory(level, std::min(ends.first + someRows, ends.last) - 1);
    }
    const Ends ends = endsOf(m_database, QStringLiteral("events"));
    *isAnyLeft = ends.last > ends.first;
    return m_database.run(QStringLiteral("DELETE FROM events WHERE id < ?"),
                          { std::min(ends.first + someRows, ends.last) });
}

} // namespace dx4::journal
