// SPDX-License-Identifier: MIT
// One table of a configuration file, read key by key.
#pragma once

#include "host/config/config.h"

#include <toml++/toml.h>

#include <initializer_list>
#include <utility>

namespace dx4::host {

/// Reads the keys of a table and notes every error with its line. A key that is absent or wrong
/// leaves its target as it was.
class ConfigTable {
public:
    /// @param table   may be null: an absent table, all keys absent
    /// @param errors  outlives the reader
    ConfigTable(const toml::table *table, QVector<ConfigError> &errors);

    bool has(const char *key) const { return m_table && m_table->contains(key); }
    int line() const;

    void integer(const char *key, int lowest, int highest, int &target);
    void milliseconds(const char *key, int lowest, int highest, Duration &target);
    void number(const char *key, double &target);
    void text(const char *key, const char *example, QString &target);
    void flag(const char *key, bool &target);

    /// Every key of the table, each a number from 0 to `highest`, decimal or with 0x, with a text.
    void textsByNumber(int highest, QMap<int, QString> &target);

    /// One of a few words or numbers.
    template <typename Value>
    void choice(const char *key, std::initializer_list<std::pair<const char *, Value>> choices,
                Value &target);

    /// The tables of a key, or none.
    ///
    /// @param header  that begins each of them, for messages: "station.register"
    QVector<const toml::table *> tables(const char *key, const char *header);

    /// The table "[key]", or null.
    const toml::table *table(const char *key);

    /// To be called last: every key that was not asked for is an error.
    void refuseTheRest();

    /// Notes an error at a key, or at the table where the key is absent.
    void wrong(const char *key, const QString &text);

private:
    const toml::node *find(const char *key);

    const toml::table *m_table;
    QVector<ConfigError> &m_errors;
    QStringList m_known;
};

template <typename Value>
void ConfigTable::choice(const char *key,
                         std::initializer_list<std::pair<const char *, Value>> choices,
                         Value &target)
{
    const toml::node *node = find(key);
    if (!node)
        return;
    const auto word = node->value<std::string>();
    QStringList expected;
    for (const auto &[name, value] : choices) {
        if (word && *word == name) {
            target = value;
            return;
        }
        expected.append(QStringLiteral("\"%1\"").arg(QLatin1String(name)));
    }
    wrong(key, QStringLiteral("expected %1").arg(expected.join(QStringLiteral(", "))));
}

} // namespace dx4::host
