// SPDX-License-Identifier: MIT
// One connection to an SQLite file, and what went wrong on it in words.
#include "journal/database.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>

#include <atomic>

#include <fcntl.h>
#include <unistd.h>

namespace dx4::journal {
namespace {

// Results of SQLite, without what extended ones have above the low byte.
constexpr int resultMask = 0xFF;
constexpr int resultBusy = 5;
constexpr int resultReadOnly = 8;
constexpr int resultCorrupt = 11;
constexpr int resultFull = 13;
constexpr int resultCannotOpen = 14;
constexpr int resultNotADatabase = 26;

QString nextName()
{
    static std::atomic<int> last { 0 };
    return QStringLiteral("korvane-journal-%1").arg(++last);
}

QString options(Database::Access access, int patience)
{
    const QString common = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(patience);
    return access == Database::Access::Read ? common + QStringLiteral(";QSQLITE_OPEN_READONLY")
                                            : common;
}

} // namespace

bool namesFile(const QString &path)
{
    return !path.isEmpty() && !path.startsWith(QLatin1Char(':'));
}

Database::Database(const QString &path, Access access, int patience)
    : m_path(path)
    , m_name(nextName())
    , m_patience(patience)
    , m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name))
{
    if (!m_database.isValid()) {
        fail(Trouble::Kind::Refused,
             QStringLiteral("Qt has no driver for SQLite; Debian has it as libqt5sql5-sqlite or "
                            "libqt6sql6-sqlite"));
        return;
    }
    if (!namesFile(path)) {
        fail(Trouble::Kind::Refused, QStringLiteral("names no file"));
        return;
    }
    m_database.setDatabaseName(path);
    m_database.setConnectOptions(options(access, patience));
    if (!m_database.open())
        fail(Trouble::Kind::Refused, openText());
}

Database::~Database()
{
    m_prepared.clear();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
}

bool Database::run(const QString &sql, const QVariantList &values)
{
    return each(sql, values, {});
}

bool Database::each(const QString &sql, const QVariantList &values, const Row &row)
{
    QSqlQuery *const query = prepared(sql);
    if (!query)
        return false;
    for (int i = 0; i < values.size(); ++i)
        query->bindValue(i, values.at(i));
    if (!query->exec())
        return failBy(query->lastError());
    while (row && query->next())
        row(*query);
    const QSqlError error = query->lastError();
    query->finish(); // a statement with rows to come would hold the file
    return error.isValid() ? failBy(error) : true;
}

QSqlQuery *Database::prepared(const QString &sql)
{
    const auto found = m_prepared.find(sql);
    if (found != m_prepared.end())
        return found->second.get();
    auto query = std::make_unique<QSqlQuery>(m_database);
    query->setForwardOnly(true);
    if (query->prepare(sql))
        return (m_prepared[sql] = std::move(query)).get();
    failBy(query->lastError());
    return nullptr;
}

std::optional<qint64> Database::number(const QString &sql, const QVariantList &values)
{
    std::optional<qint64> found;
    each(sql, values, [&](const QSqlQuery &row) {
        if (!found && !row.value(0).isNull())
            found = row.value(0).toLongLong();
    });
    return found;
}

QString Database::text(const QString &sql)
{
    QString found;
    each(sql, {}, [&](const QSqlQuery &row) { found = row.value(0).toString(); });
    return found;
}

bool Database::transaction(const std::function<bool()> &work)
{
    return carryOut(QStringLiteral("BEGIN IMMEDIATE"), work);
}

bool Database::reading(const std::function<bool()> &work)
{
    return carryOut(QStringLiteral("BEGIN"), work);
}

bool Database::carryOut(const QString &begin, const std::function<bool()> &work)
{
    if (!run(begin))
        return false;
    if (work() && run(QStringLiteral("COMMIT")))
        return true;
    const Trouble first = m_trouble;
    run(QStringLiteral("ROLLBACK")); // SQLite has done that itself where the disk is full
    m_trouble = first;
    return false;
}

bool Database::fail(Trouble::Kind kind, const QString &why)
{
    m_trouble = { kind, QStringLiteral("%1: %2").arg(m_path, why) };
    return false;
}

bool Database::failBy(const QSqlError &error)
{
    switch (error.nativeErrorCode().toInt() & resultMask) {
    case resultBusy:
        return fail(Trouble::Kind::Busy,
                    QStringLiteral("another program has held it for longer than %1 s")
                        .arg(m_patience / 1000.0));
    case resultReadOnly:
        return fail(Trouble::Kind::Refused, QStringLiteral("may be read only"));
    case resultCorrupt:
    case resultNotADatabase:
        return fail(Trouble::Kind::Damaged, QStringLiteral("is damaged"));
    case resultFull:
        return fail(Trouble::Kind::Full, QStringLiteral("the disk is full"));
    case resultCannotOpen:
        return fail(Trouble::Kind::Refused, openText());
    default:
        return fail(Trouble::Kind::Other, error.databaseText());
    }
}

QString Database::openText() const
{
    const QFileInfo folder(QFileInfo(m_path).absolutePath());
    if (!folder.isDir())
        return QStringLiteral("there is no folder %1").arg(folder.filePath());
    const QByteArray name = QFile::encodeName(folder.filePath());
    if (faccessat(AT_FDCWD, name.constData(), W_OK, AT_EACCESS) != 0)
        return QStringLiteral("its folder %1 takes no new file").arg(folder.filePath());
    if (!QFileInfo::exists(m_path))
        return QStringLiteral("is not there");
    return QStringLiteral("cannot be opened");
}

} // namespace dx4::journal
