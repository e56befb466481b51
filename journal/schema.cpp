// SPDX-License-Identifier: MIT
// The tables of a journal, and the way there from the versions before.
#include "journal/schema.h"

#include "journal/history.h"

namespace dx4::journal {
namespace {

QStringList eventTables()
{
    return {
        QStringLiteral("CREATE TABLE starts (id INTEGER PRIMARY KEY, began INTEGER NOT NULL,"
                       " last INTEGER NOT NULL, ended INTEGER NOT NULL, program TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE events (id INTEGER PRIMARY KEY, start INTEGER NOT NULL,"
                       " time INTEGER NOT NULL, kind INTEGER NOT NULL, line TEXT NOT NULL,"
                       " station INTEGER NOT NULL, type TEXT NOT NULL, address INTEGER NOT NULL,"
                       " code INTEGER, before INTEGER, after INTEGER, text TEXT NOT NULL)"),
        QStringLiteral("CREATE INDEX events_time ON events (time)"),
        QStringLiteral("CREATE INDEX events_kind ON events (kind, id)"),
        QStringLiteral(
            "CREATE TABLE wear (line TEXT NOT NULL, station INTEGER NOT NULL, type TEXT NOT NULL,"
            " address INTEGER NOT NULL, writes INTEGER NOT NULL, last INTEGER NOT NULL,"
            " PRIMARY KEY (line, station, type, address)) WITHOUT ROWID"),
    };
}

/// No index but that on the time: rows and index entries are appended only, so that a batch touches
/// a few pages however many registers there are. Flash wears by pages.
QStringList historyTables()
{
    QStringList made = {
        QStringLiteral(
            "CREATE TABLE series (id INTEGER PRIMARY KEY, line TEXT NOT NULL,"
            " station INTEGER NOT NULL, type TEXT NOT NULL, address INTEGER NOT NULL,"
            " name TEXT NOT NULL, unit TEXT NOT NULL, factor REAL NOT NULL, shift REAL NOT NULL,"
            " is_signed INTEGER NOT NULL, decimals INTEGER NOT NULL,"
            " UNIQUE (line, station, type, address, name, unit, factor, shift, is_signed,"
            " decimals))"),
        QStringLiteral("CREATE TABLE rolled (level INTEGER PRIMARY KEY, upto INTEGER NOT NULL)"),
    };
    for (int level = 0; level < levelCount; ++level) {
        made += QStringLiteral(
                    "CREATE TABLE %1 (id INTEGER PRIMARY KEY, start INTEGER NOT NULL,"
                    " time INTEGER NOT NULL, series INTEGER NOT NULL, lowest INTEGER NOT NULL,"
                    " highest INTEGER NOT NULL, last INTEGER NOT NULL, count INTEGER NOT NULL,"
                    " quality INTEGER NOT NULL)")
                    .arg(levelTable(level));
        made += QStringLiteral("CREATE INDEX %1_time ON %1 (time, series)").arg(levelTable(level));
        made += QStringLiteral("INSERT INTO rolled VALUES (%1, 0)").arg(level);
    }
    return made;
}

qint64 versionOf(Database &database)
{
    return database.number(QStringLiteral("PRAGMA user_version")).value_or(0);
}

bool carryOut(Database &database, const QStringList &statements)
{
    for (const QString &statement : statements) {
        if (!database.run(statement))
            return false;
    }
    return true;
}

} // namespace

const QVector<QStringList> &schemaSteps()
{
    static const QVector<QStringList> steps = { eventTables() + historyTables() };
    return steps;
}

bool checkSchema(Database &database, int steps, bool *isEmpty)
{
    const auto tables = database.number(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    const auto id = database.number(QStringLiteral("PRAGMA application_id"));
    if (!tables || !id)
        return false;
    *isEmpty = *tables == 0;
    if (*tables > 0 && *id != applicationId)
        return database.fail(Trouble::Kind::Foreign,
                             QStringLiteral("is a database of another program, no journal"));
    const qint64 version = versionOf(database);
    if (version > steps)
        return database.fail(Trouble::Kind::Newer,
                             QStringLiteral("is a journal of version %1; this program knows those "
                                            "up to %2 and leaves it as it is")
                                 .arg(version)
                                 .arg(steps));
    return true;
}

bool bringUpToDate(Database &database, const QVector<QStringList> &steps)
{
    if (versionOf(database) == steps.size())
        return true;
    return database.transaction([&] {
        // Another program may have done it meanwhile.
        for (int version = static_cast<int>(versionOf(database)); version < steps.size();
             ++version) {
            const QStringList mark = {
                QStringLiteral("PRAGMA application_id = %1").arg(applicationId),
                QStringLiteral("PRAGMA user_version = %1").arg(version + 1),
            };
            if (!carryOut(database, steps.at(version) + mark))
                return false;
        }
        return true;
    });
}

} // namespace dx4::journal
