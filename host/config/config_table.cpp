// SPDX-License-Identifier: MIT
// One table of a configuration file, read key by key.
#include "host/config/config_table.h"

#include "host/base/number_text.h"

#include <cmath>
#include <optional>

namespace dx4::host {
namespace {

int lineOf(const toml::node &node)
{
    return static_cast<int>(node.source().begin.line);
}

} // namespace

ConfigTable::ConfigTable(const toml::table *table, QVector<ConfigError> &errors)
    : m_table(table)
    , m_errors(errors)
{
}

int ConfigTable::line() const
{
    return m_table ? lineOf(*m_table) : 0;
}

const toml::node *ConfigTable::find(const char *key)
{
    m_known.append(QString::fromUtf8(key));
    return m_table ? m_table->get(key) : nullptr;
}

void ConfigTable::integer(const char *key, int lowest, int highest, int &target)
{
    const toml::node *node = find(key);
    if (!node)
        return;
    const auto *value = node->as_integer();
    if (value && value->get() >= lowest && value->get() <= highest)
        target = static_cast<int>(value->get());
    else
        wrong(key,
              QStringLiteral("expected a whole number from %1 to %2").arg(lowest).arg(highest));
}

void ConfigTable::milliseconds(const char *key, int lowest, int highest, Duration &target)
{
    // Every such setting is whole milliseconds from the start.
    int value = static_cast<int>(target / std::chrono::milliseconds(1));
    integer(key, lowest, highest, value);
    target = std::chrono::milliseconds(value);
}

void ConfigTable::number(const char *key, double &target)
{
    const toml::node *node = find(key);
    if (!node)
        return;
    // None for a whole number beyond those that a double holds exactly.
    const std::optional<double> value = node->value<double>();
    if (node->is_number() && value && std::isfinite(*value))
        target = *value;
    else
        wrong(key, QStringLiteral("expected a number"));
}

void ConfigTable::text(const char *key, const char *example, QString &target)
{
    const toml::node *node = find(key);
    if (!node)
        return;
    if (const auto *value = node->as_string())
        target = QString::fromStdString(value->get());
    else
        wrong(key,
              QStringLiteral("expected a text such as \"%1\"").arg(QString::fromUtf8(example)));
}

void ConfigTable::flag(const char *key, bool &target)
{
    const toml::node *node = find(key);
    if (!node)
        return;
    if (const auto *value = node->as_boolean())
        target = value->get();
    else
        wrong(key, QStringLiteral("expected true or false"));
}

void ConfigTable::textsByNumber(int highest, QMap<int, QString> &target)
{
    if (!m_table)
        return;
    for (const auto &entry : *m_table) {
        const toml::key &name = entry.first;
        const toml::node &node = entry.second;
        const QString key = QString::fromUtf8(name.data(), static_cast<int>(name.length()));
        const auto number = parseRegisterValue(key);
        const auto *text = node.as_string();
        const auto complain = [&](const QString &why) {
            m_errors.append({ static_cast<int>(name.source().begin.line),
                              QStringLiteral("%1: %2").arg(key, why) });
        };
        if (!number || *number > highest)
            complain(QStringLiteral("expected a number from 0 to %1").arg(highest));
        else if (!text || text->get().empty())
            complain(QStringLiteral("expected a text such as \"overheat\""));
        else if (target.contains(*number))
            complain(QStringLiteral("number %1 stands here twice").arg(*number));
        else
            target.insert(*number, QString::fromStdString(text->get()));
    }
}

QVector<const toml::table *> ConfigTable::tables(const char *key, const char *header)
{
    QVector<const toml::table *> result;
    const toml::node *node = find(key);
    if (!node)
        return result;
    const toml::array *array = node->as_array();
    if (node->is_table()) {
        wrong(key,
              QStringLiteral("expected [[%1]] in place of [%1], as there may be several")
                  .arg(QString::fromUtf8(header)));
        return result;
    }
    if (!array || !array->is_homogeneous(toml::node_type::table)) {
        wrong(
            key,
            QStringLiteral("expected tables, each begun by [[%1]]").arg(QString::fromUtf8(header)));
        return result;
    }
    for (const toml::node &element : *array)
        result.append(element.as_table());
    return result;
}

const toml::table *ConfigTable::table(const char *key)
{
    const toml::node *node = find(key);
    if (node && !node->is_table())
        wrong(key, QStringLiteral("expected a table, begun by [%1]").arg(QString::fromUtf8(key)));
    return node ? node->as_table() : nullptr;
}

void ConfigTable::refuseTheRest()
{
    if (!m_table)
        return;
    for (const auto &[key, node] : *m_table) {
        const QString name = QString::fromUtf8(key.data(), static_cast<int>(key.length()));
        if (m_known.contains(name))
            continue;
        m_errors.append({ static_cast<int>(key.source().begin.line),
                          QStringLiteral("%1: no such key; expected one of %2")
                              .arg(name, m_known.join(QStringLiteral(", "))) });
    }
}

void ConfigTable::wrong(const char *key, const QString &text)
{
    const toml::node *node = m_table ? m_table->get(key) : nullptr;
    m_errors.append({ node ? lineOf(*node) : line(),
                      QStringLiteral("%1: %2").arg(QString::fromUtf8(key), text) });
}

} // namespace dx4::host
