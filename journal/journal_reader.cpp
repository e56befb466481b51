// SPDX-License-Identifier: MIT
// Reads a journal, while others write it.
#include "journal/journal_reader.h"

#include <algorithm>

namespace dx4::journal {
namespace {

std::optional<int> optionalNumber(const QVariant &value)
{
    return value.isNull() ? std::nullopt : std::optional<int>(value.toInt());
}

Event eventOf(const QSqlQuery &row)
{
    Event event;
    event.id = row.value(0).toLongLong();
    event.start = row.value(1).toLongLong();
    event.time = row.value(2).toLongLong();
    event.kind = static_cast<EventKind>(row.value(3).toInt());
    event.line = row.value(4).toString();
    event.station = row.value(5).toInt();
    event.regType = row.value(6).toString();
    event.address = row.value(7).toInt();
    event.code = optionalNumber(row.value(8));
    event.before = optionalNumber(row.value(9));
    event.after = optionalNumber(row.value(10));
    event.text = row.value(11).toString();
    return event;
}

QString kindList(const QVector<EventKind> &kinds)
{
    QStringList numbers;
    for (const EventKind kind : kinds)
        numbers.append(QString::number(static_cast<int>(kind)));
    return numbers.join(QLatin1Char(','));
}

/// The conditions of a query, and what their question marks stand for.
QString conditionsOf(const EventQuery &query, QVariantList *values)
{
    QString sql = QStringLiteral("id < ? AND id > ? AND time >= ? AND time < ?");
    *values = { query.before, query.after, query.window.from, query.window.to };
    if (!query.kinds.isEmpty())
        sql += QStringLiteral(" AND kind IN (%1)").arg(kindList(query.kinds));
    if (!query.line.isEmpty()) {
        sql += QStringLiteral(" AND line = ?");
        *values << query.line;
    }
    if (query.station != 0) {
        sql += QStringLiteral(" AND station = ?");
        *values << query.station;
    }
    if (!query.contains.isEmpty()) {
        sql += QStringLiteral(" AND instr(lower(text), lower(?)) > 0");
        *values << query.contains;
    }
    return sql;
}

Series seriesOf(const QSqlQuery &row)
{
    Series series;
    series.at = { row.value(1).toString(), row.value(2).toInt(), row.value(3).toString(),
                  row.value(4).toInt() };
    series.name = row.value(5).toString();
    series.scaling.unit = row.value(6).toString();
    series.scaling.factor = row.value(7).toDouble();
    series.scaling.offset = row.value(8).toDouble();
    series.scaling.isSigned = row.value(9).toBool();
    series.scaling.decimals = row.value(10).toInt();
    return series;
}

QString seriesColumns()
{
    return QStringLiteral("SELECT id, line, station, type, address, name, unit, factor, shift,"
                          " is_signed, decimals FROM series");
}

QString idList(const std::map<qint64, Series> &series)
{
    QStringList ids;
    for (const auto &[id, of] : series)
        ids.append(QString::number(id));
    return ids.join(QLatin1Char(','));
}

HistoryPoint pointOf(const HistoryKey &key, const HistoryRow &row, const host::Scaling &scaling)
{
    const auto quantity = [&](int count) { return count * scaling.factor + scaling.offset; };
    const auto ends = std::minmax({ quantity(row.lowest), quantity(row.highest) });
    return { std::get<0>(key),
             std::get<1>(key),
             ends.first,
             ends.second,
             quantity(row.last),
             row.count,
             static_cast<Quality>(row.quality) };
}

} // namespace

std::unique_ptr<JournalReader> JournalReader::open(const QString &path, Trouble *trouble,
                                                   int patience)
{
    OpenedFile opened = openToRead(path, patience);
    *trouble = opened.trouble;
    if (!opened.database)
        return nullptr;
    return std::unique_ptr<JournalReader>(new JournalReader(std::move(opened.database)));
}

JournalReader::JournalReader(std::unique_ptr<Database> database)
    : m_database(std::move(database))
{
}

std::optional<QVector<Event>> JournalReader::events(const EventQuery &query)
{
    QVariantList values;
    const QString sql =
        QStringLiteral("SELECT id, start, time, kind, line, station, type, address,"
                       " code, before, after, text FROM events WHERE %1"
                       " ORDER BY id %2 LIMIT ?")
            .arg(conditionsOf(query, &values),
                 query.isOldestFirst ? QStringLiteral("ASC") : QStringLiteral("DESC"));
    values << query.most;
    QVector<Event> found;
    if (!m_database->each(sql, values, [&](const QSqlQuery &row) { found.append(eventOf(row)); }))
        return std::nullopt;
    return found;
}

std::optional<History> JournalReader::history(const HistoryQuery &query)
{
    History history;
    const bool isRead = m_database->reading([&] {
        SeriesById series;
        if (!readSeries(query.at, &series))
            return false;
        const std::optional<int> level = levelOf(query);
        return level && readPoints(query, series, *level, &history);
    });
    return isRead ? std::optional<History>(history) : std::nullopt;
}

bool JournalReader::readSeries(const RegisterKey &at, SeriesById *found)
{
    return m_database->each(
        seriesColumns()
            + QStringLiteral(" WHERE line = ? AND station = ? AND type = ? AND address = ?"),
        { at.line, at.station, at.regType, at.address },
        [&](const QSqlQuery &row) { found->emplace(row.value(0).toLongLong(), seriesOf(row)); });
}

/// The level that fits the window, or a coarser one that reaches further back into it.
std::optional<int> JournalReader::levelOf(const HistoryQuery &query)
{
    int level = levelFor(query.window.to - query.window.from, query.mostRows);
    const auto oldest = [this](int of) {
        return m_database->number(QStringLiteral("SELECT min(time) FROM %1").arg(levelTable(of)));
    };
    for (; level + 1 < levelCount; ++level) {
        const Time width = levelWidths.at(static_cast<std::size_t>(level + 1));
        const auto here = oldest(level);
        const auto coarser = oldest(level + 1);
        const bool isAllHere = !coarser || (here && *here <= query.window.from)
            || (here && rowBegin(*here, width) <= *coarser);
        if (isAllHere)
            return level;
    }
    return level;
}

bool JournalReader::readPoints(const HistoryQuery &query, const SeriesById &series, int level,
                               History *history)
{
    history->width = levelWidths.at(static_cast<std::size_t>(level));
    std::map<HistoryKey, HistoryRow> rows;
    const Window window { rowBegin(query.window.from, history->width), query.window.to };
    if (!readRows(window, idList(series), level, &rows))
        return false;
    for (const auto &[key, row] : rows) {
        const host::Scaling &scaling = series.at(std::get<2>(key)).scaling;
        history->unit = scaling.unit;
        history->points.append(pointOf(key, row, scaling));
    }
    return true;
}

/// What has not gone into the level yet is read from the finer ones.
bool JournalReader::readRows(const Window &window, const QString &ids, int level,
                             std::map<HistoryKey, HistoryRow> *rows)
{
    const Time width = levelWidths.at(static_cast<std::size_t>(level));
    for (int source = level; source >= 0; --source) {
        const QString newOnly = source == level
            ? QString()
            : QStringLiteral(" AND id > (SELECT upto FROM rolled WHERE level = %1)").arg(source);
        const QString sql = QStringLiteral("SELECT %1 FROM %2 WHERE time >= ? AND time < ?"
                                           " AND series IN (%3)%4 ORDER BY id")
                                .arg(historyColumns(), levelTable(source), ids, newOnly);
        if (!m_database->each(sql, { window.from, window.to },
                              [&](const QSqlQuery &row) { addRow(row, width, rows); }))
            return false;
    }
    return true;
}

std::optional<QVector<WearCount>> JournalReader::wear()
{
    QVector<WearCount> found;
    const bool isRead = m_database->each(
        QStringLiteral("SELECT line, station, type, address, writes, last FROM wear"
                       " ORDER BY writes DESC, line, station, type, address"),
        {}, [&](const QSqlQuery &row) {
            found.append({ { row.value(0).toString(), row.value(1).toInt(), row.value(2).toString(),
                             row.value(3).toInt() },
                           row.value(4).toLongLong(),
                           row.value(5).toLongLong() });
        });
    return isRead ? std::optional<QVector<WearCount>>(found) : std::nullopt;
}

std::optional<QVector<Series>> JournalReader::series()
{
    QVector<Series> found;
    const bool isRead = m_database->each(
        seriesColumns(), {}, [&](const QSqlQuery &row) { found.append(seriesOf(row)); });
    std::sort(found.begin(), found.end());
    return isRead ? std::optional<QVector<Series>>(found) : std::nullopt;
}

std::optional<QVector<JournalStart>> JournalReader::starts()
{
    QVector<JournalStart> found;
    const bool isRead = m_database->each(
        QStringLiteral("SELECT id, began, last, ended, program FROM starts ORDER BY id"), {},
        [&](const QSqlQuery &row) {
            found.append({ row.value(0).toLongLong(), row.value(1).toLongLong(),
                           row.value(2).toLongLong(), row.value(3).toBool(),
                           row.value(4).toString() });
        });
    return isRead ? std::optional<QVector<JournalStart>>(found) : std::nullopt;
}

} // namespace dx4::journal
