// SPDX-License-Identifier: MIT
// Opens the file of a journal, and sets a damaged one aside.
#include "journal/journal_file.h"

#include "journal/schema.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>

namespace dx4::journal {
namespace {

bool isWhole(Database &database)
{
    const QString found = database.text(QStringLiteral("PRAGMA quick_check(1)"));
    if (found == QLatin1String("ok"))
        return true;
    // A file that could not be looked at is not damaged for that.
    const bool isLookedAt = !found.isEmpty();
    return isLookedAt ? database.fail(Trouble::Kind::Damaged, QStringLiteral("is damaged")) : false;
}

/// Readers go on while somebody writes, and a program that is killed leaves nothing half done.
bool useWriteAheadLog(Database &database)
{
    const QString mode = database.text(QStringLiteral("PRAGMA journal_mode = WAL"));
    if (mode == QLatin1String("wal"))
        return true;
    if (mode.isEmpty())
        return false;
    return database.fail(Trouble::Kind::Refused,
                         QStringLiteral("a log beside it cannot be kept there"));
}

bool makeReady(Database &database)
{
    bool isEmpty = false;
    const int steps = static_cast<int>(schemaSteps().size());
    return database.isOpen() && checkSchema(database, steps, &isEmpty)
        && (isEmpty || isWhole(database)) && useWriteAheadLog(database)
        && bringUpToDate(database, schemaSteps());
}

/// What SQLite keeps beside a file belongs to it.
const QStringList &parts()
{
    static const QStringList suffixes = { QString(), QStringLiteral("-wal"),
                                          QStringLiteral("-shm") };
    return suffixes;
}

QString freeName(const QString &path)
{
    for (int number = 1;; ++number) {
        const QString name = QStringLiteral("%1.damaged-%2").arg(path).arg(number);
        if (!QFileInfo::exists(name))
            return name;
    }
}

/// @return the new name, or nothing
QString setAside(const QString &path)
{
    const QString name = freeName(path);
    for (const QString &part : parts()) {
        const bool isThere = QFileInfo::exists(path + part);
        if (isThere && !QFile::rename(path + part, name + part) && part.isEmpty())
            return QString();
    }
    return name;
}

OpenedFile tryToOpen(const QString &path, int patience)
{
    OpenedFile opened;
    auto database = std::make_unique<Database>(path, Database::Access::Write, patience);
    if (makeReady(*database))
        opened.database = std::move(database);
    else
        opened.trouble = database->trouble();
    return opened;
}

} // namespace

OpenedFile openToWrite(const QString &path, int patience)
{
    if (!namesFile(path))
        return tryToOpen(path, patience);
    // Of two programs that find the file damaged one sets it aside, the other finds a new one.
    QLockFile lock(path + QStringLiteral(".lock"));
    lock.setStaleLockTime(0); // whoever holds it may take long; who died is noticed all the same
    if (!lock.tryLock(patience) && lock.error() == QLockFile::LockFailedError)
        return { nullptr,
                 { Trouble::Kind::Busy,
                   QStringLiteral("%1: another program has been opening it for longer than %2 s")
                       .arg(path)
                       .arg(patience / 1000.0) },
                 QString() };
    OpenedFile opened = tryToOpen(path, patience);
    if (opened.trouble.kind != Trouble::Kind::Damaged)
        return opened;
    const QString name = setAside(path);
    if (name.isEmpty()) {
        opened.trouble.text += QStringLiteral(", and cannot be set aside");
        return opened;
    }
    opened = tryToOpen(path, patience);
    opened.setAsideAs = name;
    return opened;
}

OpenedFile openToRead(const QString &path, int patience)
{
    OpenedFile opened;
    const int steps = static_cast<int>(schemaSteps().size());
    auto database = std::make_unique<Database>(path, Database::Access::Read, patience);
    bool isEmpty = false;
    if (database->isOpen() && checkSchema(*database, steps, &isEmpty)) {
        const auto version = database->number(QStringLiteral("PRAGMA user_version"));
        if (version == steps) {
            opened.database = std::move(database);
            return opened;
        }
        database->fail(Trouble::Kind::Refused,
                       isEmpty ? QStringLiteral("is empty; a program that writes it fills it")
                               : QStringLiteral("is a journal of an older version; a program that "
                                                "writes it brings it up to date"));
    }
    opened.trouble = database->trouble();
    return opened;
}

} // namespace dx4::journal
