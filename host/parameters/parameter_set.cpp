// SPDX-License-Identifier: MIT
// The parameters of one station as a file that people read and compare.
#include "host/parameters/parameter_set.h"

#include "host/base/number_text.h"
#include "host/base/whole_file.h"
#include "host/link/notation.h"
#include "register_tables.h"
#include "wire/limits.h"

#include <QRegularExpression>

#include <algorithm>

namespace dx4::host {
namespace {

QString nameOf(int address)
{
    return QStringLiteral("F ") + addressText(QStringLiteral("F"), address);
}

QString valueText(const std::optional<quint16> &value)
{
    return value ? QString::number(*value) : QStringLiteral("-");
}

std::optional<quint16> valueOf(const ParameterSet &set, int address)
{
    const auto found = set.values.constFind(address);
    return found == set.values.constEnd() ? std::nullopt : std::optional<quint16>(found.value());
}

/// Takes a set's lines in, one by one.
class Parser {
public:
    /// @return what is wrong with the line; empty when nothing
    QString take(const QString &line)
    {
        if (line.isEmpty())
            return {};
        if (m_ended)
            return QStringLiteral("nothing may follow \"complete\"");
        if (line == QStringLiteral("complete")) {
            m_ended = true;
            return isComplete(m_set) ? QString()
                                     : QStringLiteral("the set is said to be complete, but %1 "
                                                      "of %2 registers are missing")
                                           .arg(missing())
                                           .arg(allParameters().size());
        }
        if (line.startsWith(QStringLiteral("station ")))
            return takeStation(line.mid(8));
        return takeRegister(line);
    }

    bool hasStation() const { return m_hasStation; }
    const ParameterSet &set() const { return m_set; }

private:
    int missing() const
    {
        return static_cast<int>(allParameters().size() - m_set.values.size()
                                - m_set.refused.size());
    }

    QString takeStation(const QString &text)
    {
        if (m_hasStation)
            return QStringLiteral("the station stands here twice");
        m_set.station = parseWholeNumber(text).value_or(0);
        m_hasStation = true;
        const bool good = m_set.station >= 1 && m_set.station <= lastStation;
        return good ? QString() : QStringLiteral("no station; stations are 1 to 247");
    }

    QString takeRegister(const QString &line)
    {
        static const QRegularExpression form(
            QStringLiteral("^F ([0-9cC])\\.([0-9]{1,2}) (?:= ([0-9]+)|refused)$"));
        const auto match = form.match(line);
        if (!match.hasMatch())
            return QStringLiteral("expected a line such as \"F 8.2 = 5\"");
        const QString group = match.captured(1).toLower();
        const int address =
            parseWholeNumber(group).value_or(groupC) * indexesPerGroup + match.captured(2).toInt();
        if (!allParameters().contains(address))
            return QStringLiteral("the drive has no %1").arg(nameOf(address));
        if (m_set.values.contains(address) || m_set.refused.contains(address))
            return QStringLiteral("%1 stands here twice").arg(nameOf(address));
        if (match.captured(3).isEmpty()) {
            m_set.refused.append(address);
            std::sort(m_set.refused.begin(), m_set.refused.end());
            return {};
        }
        const std::optional<quint16> value = parseRegisterValue(match.captured(3));
        if (!value)
            return QStringLiteral("a value is 0 to 65535");
        m_set.values.insert(address, *value);
        return {};
    }

    ParameterSet m_set;
    bool m_hasStation = false;
    bool m_ended = false;
};

/// What is wrong with a text, and in which line.
struct WrongLine {
    int line = 0; // from 1
    QString text;
};

std::optional<ParameterSet> parse(const QString &text, WrongLine *wrong)
{
    Parser parser;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).section(QLatin1Char('#'), 0, 0).simplified();
        *wrong = { i + 1, parser.take(line) };
        if (!wrong->text.isEmpty())
            return std::nullopt;
    }
    if (parser.hasStation())
        return parser.set();
    *wrong = { 1, QStringLiteral("expected a line such as \"station 1\"") };
    return std::nullopt;
}

void tell(QString *error, const QString &what)
{
    if (error)
        *error = what;
}

} // namespace

bool operator==(const ParameterSet &a, const ParameterSet &b)
{
    return a.station == b.station && a.values == b.values && a.refused == b.refused;
}

QVector<int> allParameters()
{
    QVector<int> addresses;
    for (int group = 0; group < parameterGroupCount; ++group) {
        for (int index = REG_F_ADDRESS[group][0]; index <= REG_F_ADDRESS[group][1]; ++index)
            addresses.append(group * indexesPerGroup + index);
    }
    return addresses;
}

bool isComplete(const ParameterSet &set)
{
    const QVector<int> all = allParameters();
    return std::all_of(all.begin(), all.end(), [&set](int address) {
        return set.values.contains(address) || set.refused.contains(address);
    });
}

QString ParameterDifference::text() const
{
    return QStringLiteral("%1: %2 | %3")
        .arg(fullAddress(QStringLiteral("F"), address), valueText(first), valueText(second));
}

QVector<ParameterDifference> compare(const ParameterSet &first, const ParameterSet &second)
{
    QVector<ParameterDifference> differences;
    for (int address : allParameters()) {
        const ParameterDifference both { address, valueOf(first, address),
                                         valueOf(second, address) };
        if (both.first != both.second)
            differences.append(both);
    }
    return differences;
}

QString toText(const ParameterSet &set)
{
    QString text = QStringLiteral("# F registers of one drive\nstation %1\n").arg(set.station);
    for (int address : allParameters()) {
        if (set.values.contains(address))
            text += QStringLiteral("%1 = %2\n").arg(nameOf(address)).arg(set.values.value(address));
        else if (set.refused.contains(address))
            text += QStringLiteral("%1 refused\n").arg(nameOf(address));
    }
    if (isComplete(set))
        text += QStringLiteral("complete\n");
    return text;
}

std::optional<ParameterSet> parseParameterSet(const QString &text, QString *error)
{
    WrongLine wrong;
    auto set = parse(text, &wrong);
    if (!set)
        tell(error, QStringLiteral("line %1: %2").arg(wrong.line).arg(wrong.text));
    return set;
}

bool saveParameterSet(const QString &path, const ParameterSet &set, QString *error)
{
    return replaceFile(path, toText(set).toUtf8(), error);
}

std::optional<ParameterSet> loadParameterSet(const QString &path, QString *error)
{
    QString why;
    const auto bytes = readWholeFile(path, &why);
    if (!bytes) {
        tell(error, QStringLiteral("%1: %2").arg(path, why));
        return std::nullopt;
    }
    WrongLine wrong;
    auto set = parse(QString::fromUtf8(*bytes), &wrong);
    if (!set)
        tell(error, QStringLiteral("%1:%2: %3").arg(path).arg(wrong.line).arg(wrong.text));
    return set;
}

} // namespace dx4::host
