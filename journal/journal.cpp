// SPDX-License-Identifier: MIT
// Writes a journal.
#include "journal/journal.h"

#include "journal/retention.h"

#include <QFile>

#include <sys/stat.h>

namespace dx4::journal {
namespace {

constexpr int longestText = 2000; // characters; a name of a configuration may be of any length

/// Qt binds a null string as a null.
QString column(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text.left(longestText);
}

QVariant column(const std::optional<int> &value)
{
    return value ? QVariant(*value) : QVariant();
}

quint64 fileAt(const QString &path)
{
    struct stat found { };
    return stat(QFile::encodeName(path).constData(), &found) == 0 ? found.st_ino : 0;
}

} // namespace

/// What has to be as before when a transaction fails is in Known.
struct Journal::Writer {
    struct Start {
        qint64 id = 0;
        Time last = 0; ///< as the row has it
    };
    struct Known {
        std::map<qint64, Start> starts; ///< rows of the runs of the clock
        std::map<Series, qint64> series; ///< their rows
    };

    Writer(Database &opened, const JournalSettings &given)
        : database(opened)
        , settings(given)
        , history(opened)
        , retention(opened, history, given.bounds)
    {
    }

    bool writeAll(const Batch &batch);
    bool write(const Event &event);
    bool write(const Sample &sample);
    bool write(const WearCount &wear);
    std::optional<qint64> startOf(qint64 run, Time time);
    std::optional<qint64> seriesOf(const Series &series);

    Database &database;
    const JournalSettings settings;
    HistoryWriter history;
    Retention retention;
    Known known;
};

std::unique_ptr<Journal> Journal::open(const QString &path, const JournalSettings &settings,
                                       Trouble *trouble, QString *setAsideAs)
{
    OpenedFile opened = openToWrite(path, settings.patience);
    *trouble = opened.trouble;
    if (setAsideAs)
        *setAsideAs = opened.setAsideAs;
    if (!opened.database)
        return nullptr;
    return std::unique_ptr<Journal>(new Journal(std::move(opened.database), settings));
}

Journal::Journal(std::unique_ptr<Database> database, const JournalSettings &settings)
    : m_database(std::move(database))
    , m_writer(std::make_unique<Writer>(*m_database, settings))
    , m_file(fileAt(m_database->path()))
{
}

Journal::~Journal() = default;

bool Journal::write(const Batch &batch, Trouble *trouble)
{
    // What a person may have to answer for is brought to the disk at once. Samples wait for the
    // next such batch, or until SQLite moves its log: that spares flash a sync each second.
    const bool isSynced = !batch.events.empty() || !batch.wear.empty();
    const Writer::Known before = m_writer->known;
    if (m_database->run(isSynced ? QStringLiteral("PRAGMA synchronous = FULL")
                                 : QStringLiteral("PRAGMA synchronous = NORMAL"))
        && m_database->transaction([&] { return m_writer->writeAll(batch); }))
        return true;
    m_writer->known = before;
    m_writer->history.forget();
    *trouble = m_database->trouble();
    return false;
}

void Journal::end()
{
    for (const auto &[run, start] : m_writer->known.starts)
        m_database->run(QStringLiteral("UPDATE starts SET ended = 1 WHERE id = ?"), { start.id });
}

bool Journal::isInPlace() const
{
    return fileAt(m_database->path()) == m_file;
}

bool Journal::Writer::writeAll(const Batch &batch)
{
    std::set<EventKind> kinds;
    for (const Event &event : batch.events) {
        kinds.insert(event.kind);
        if (!write(event))
            return false;
    }
    for (const auto &[key, wear] : batch.wear) {
        if (!write(wear))
            return false;
    }
    for (const Sample &sample : batch.samples) {
        if (!write(sample))
            return false;
    }
    return retention.trim(kinds);
}

bool Journal::Writer::write(const Event &event)
{
    const auto start = startOf(event.start, event.time);
    return start
        && database.run(QStringLiteral("INSERT INTO events (start, time, kind, line, station, type,"
                                       " address, code, before, after, text)"
                                       " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                        { *start, event.time, static_cast<int>(event.kind), column(event.line),
                          event.station, column(event.regType), event.address, column(event.code),
                          column(event.before), column(event.after), column(event.text) });
}

bool Journal::Writer::write(const WearCount &wear)
{
    return database.run(
        QStringLiteral("INSERT INTO wear VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT DO UPDATE"
                       " SET writes = writes + excluded.writes, last = excluded.last"),
        { column(wear.at.line), wear.at.station, column(wear.at.regType), wear.at.address,
          wear.writes, wear.last });
}

bool Journal::Writer::write(const Sample &sample)
{
    const auto start = startOf(sample.start, sample.time);
    const auto series = start ? seriesOf(sample.series) : std::nullopt;
    return series
        && history.add(*start, *series, sample.time,
                       { sample.lowest, sample.highest, sample.last, sample.count,
                         static_cast<int>(sample.quality) });
}

/// The row of a run of the clock, which gets the time as its newest.
std::optional<qint64> Journal::Writer::startOf(qint64 run, Time time)
{
    Start &start = known.starts[run];
    if (start.id == 0) {
        start.last = time;
        if (database.run(QStringLiteral("INSERT INTO starts (began, last, ended, program)"
                                        " VALUES (?, ?, 0, ?)"),
                         { time, time, column(settings.program) }))
            start.id = database.number(QStringLiteral("SELECT max(id) FROM starts")).value_or(0);
    } else if (start.last < time) {
        start.last = time;
        if (!database.run(QStringLiteral("UPDATE starts SET last = ? WHERE id = ?"),
                          { time, start.id }))
            return std::nullopt;
    }
    return start.id != 0 ? std::optional<qint64>(start.id) : std::nullopt;
}

std::optional<qint64> Journal::Writer::seriesOf(const Series &series)
{
    const auto found = known.series.find(series);
    if (found != known.series.end())
        return found->second;
    const host::Scaling &scaling = series.scaling;
    const QVariantList key = {
        column(series.at.line), series.at.station,   column(series.at.regType),
        series.at.address,      column(series.name), column(scaling.unit),
        scaling.factor,         scaling.offset,      scaling.isSigned,
        scaling.decimals
    };
    if (!database.run(QStringLiteral("INSERT OR IGNORE INTO series (line, station, type, address,"
                                     " name, unit, factor, shift, is_signed, decimals)"
                                     " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                      key))
        return std::nullopt;
    const auto id = database.number(
        QStringLiteral("SELECT id FROM series WHERE line = ? AND station = ? AND type = ?"
                       " AND address = ? AND name = ? AND unit = ? AND factor = ? AND shift = ?"
                       " AND is_signed = ? AND decimals = ?"),
        key);
    if (id)
        known.series[series] = *id;
    return id;
}

} // namespace dx4::journal
