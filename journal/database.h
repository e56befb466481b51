// SPDX-License-Identifier: MIT
// One connection to an SQLite file, and what went wrong on it in words.
#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace dx4::journal {

/// Why something could not be done.
struct Trouble {
    enum class Kind {
        None,
        Busy, ///< another program held the file for longer than the patience
        Full, ///< the disk takes no more
        Damaged, ///< the file is no database, or a broken one
        Newer, ///< a newer version wrote the file
        Foreign, ///< a database of something else
        Refused, ///< it cannot be opened, or only be read
        Other,
    };
    Kind kind = Kind::None;
    QString text; ///< one line for people, with the file
};

/// Whether a path is that of a file. SQLite takes "" and ":memory:" for databases that end with the
/// connection.
bool namesFile(const QString &path);

/// A connection, used on the thread that opened it. Calls give false and set trouble() where they
/// fail.
class Database {
public:
    enum class Access { Write, Read };
    using Row = std::function<void(const QSqlQuery &)>;

    /// A connection that could not be opened has trouble().
    ///
    /// @param patience  for another program's lock, in milliseconds
    Database(const QString &path, Access access, int patience);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    const QString &path() const { return m_path; }
    bool isOpen() const { return m_database.isOpen(); }
    const Trouble &trouble() const { return m_trouble; }

    /// Carries a statement out, `?` standing for the values in their order. It is kept prepared.
    bool run(const QString &sql, const QVariantList &values = {});

    /// The same; `row` is called with each row.
    bool each(const QString &sql, const QVariantList &values, const Row &row);

    /// The first column of the first row; nothing where there is none, or it is null.
    std::optional<qint64> number(const QString &sql, const QVariantList &values = {});
    QString text(const QString &sql);

    /// Carries `work` out as a whole or not at all; it gives false to undo what it did.
    bool transaction(const std::function<bool()> &work);

    /// Several reads of one state of the file.
    bool reading(const std::function<bool()> &work);

    /// Notes what went wrong, and gives false.
    bool fail(Trouble::Kind kind, const QString &why);

private:
    bool carryOut(const QString &begin, const std::function<bool()> &work);
    QSqlQuery *prepared(const QString &sql);
    bool failBy(const QSqlError &error);
    QString openText() const;

    QString m_path;
    QString m_name; ///< of the connection, once in the process
    int m_patience;
    QSqlDatabase m_database;
    std::map<QString, std::unique_ptr<QSqlQuery>> m_prepared;
    Trouble m_trouble;
};

} // namespace dx4::journal
