// SPDX-License-Identifier: MIT
// Registers with the values that a user wants to give them, and runs cut to requests.
#include "cli/registers/values.h"

#include "cli/console/nearest_word.h"
#include "host/base/length.h"
#include "host/base/number_text.h"
#include "host/link/address_verdict.h"
#include "host/link/notation.h"

#include <QRegularExpression>

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr int mostRegisters = 123; // longer than any group; keeps the addition small

std::optional<quint16> parseValue(const QString &text, Failure *failure)
{
    const auto value = host::parseRegisterValue(text);
    if (value)
        return value;
    const QString why = namesRegisters(text)
        ? QStringLiteral("\"%1\" begins another address, and a setting has one; values of "
                         "registers in a row stand together, such as F 8.2 20 15, and every "
                         "further setting in quotes, such as \"FRE 3000\" \"CW 1\"")
        : QStringLiteral("\"%1\" is no value; values are 0 to 65535 or 0x0 to 0xFFFF");
    return refuse(failure, why.arg(text));
}

/// Words that name the register; the values follow.
int addressWords(const QStringList &parts)
{
    const bool hasOneRegister = parts.constFirst().endsWith(QLatin1String("CW"))
        || parts.constFirst().endsWith(QLatin1String("FRE"));
    const bool inOneWord = parts.constFirst().contains(QLatin1Char('.'))
        || parts.constFirst().contains(QLatin1Char('@'));
    return hasOneRegister || inOneWord ? 1 : 2;
}

/// A register that the configuration names, with its station.
struct NamedRegister {
    int station;
    const host::RegisterConfig *entry;
};

/// @param station  0: of any
QVector<NamedRegister> registersCalled(const QString &name, int station, const host::Config &plant)
{
    QVector<NamedRegister> found;
    for (const host::StationConfig &other : plant.stations) {
        for (const host::RegisterConfig &entry : other.registers) {
            if (entry.name == name && (station == 0 || station == other.address))
                found.append({ other.address, &entry });
        }
    }
    return found;
}

QString unknownName(const QString &name, const host::Config &plant)
{
    QStringList names;
    for (const host::StationConfig &station : plant.stations) {
        for (const host::RegisterConfig &entry : station.registers)
            names.append(entry.name);
    }
    names.removeAll(QString());
    return names.isEmpty() ? filled(
               "\"%1\": a name needs a configuration that has it; name a file with --config", name)
                           : filled("the configuration has no register called \"%1\"%2", name,
                                    suggestion(name, names));
}

std::optional<NamedRegister> findNamed(const QString &name, int station, const host::Config &plant,
                                       Failure *failure)
{
    const QVector<NamedRegister> found = registersCalled(name, station, plant);
    if (found.size() == 1)
        return found.constFirst();
    return refuse(
        failure,
        found.isEmpty()
            ? unknownName(name, plant)
            : filled("\"%1\" is a register of several stations; write which, such as %2:%1=1", name,
                     found.constFirst().station));
}

/// The register's value for a quantity in its unit, "30.5" or "-4".
std::optional<quint16> valueFor(const QString &text, const host::Scaling &scaling, Failure *failure)
{
    const bool isNegative = text.startsWith(QLatin1Char('-'));
    const auto size = host::parseDecimal(isNegative ? text.mid(1) : text);
    const auto value =
        size ? scaling.registerValue(isNegative ? -*size : *size) : std::optional<quint16>();
    if (!value)
        *failure = {
            ExitUsage,
            filled(
                "\"%1\" is no value of this register; write a number such as %2 that it can hold",
                text, QString::number(scaling.quantity(1), 'f', scaling.decimals))
        };
    return value;
}

/// "name=value", with a station in front or without.
std::optional<Setting> parseNamed(const QString &text, const host::Config &plant,
                                  const host::DriverApi &api, Failure *failure)
{
    static const QRegularExpression shape(QStringLiteral("^(?:([0-9]+):)?(.*)=(.*)$"));
    const auto match = shape.match(text);
    const int station = match.captured(1).isEmpty() ? 0 : match.captured(1).toInt();
    const auto named = findNamed(match.captured(2).trimmed(), station, plant, failure);
    if (!named)
        return std::nullopt;
    const auto value = valueFor(match.captured(3).trimmed(), named->entry->scaling, failure);
    const auto targets = value
        ? parseTargets({ named->entry->at }, named->station, WriteAccess, api, failure)
        : std::nullopt;
    if (!targets)
        return std::nullopt;
    return Setting { targets->constFirst(), { *value } };
}

std::optional<Target> lengthened(Target target, int count, AccessMode mode,
                                 const host::DriverApi &api, Failure *failure)
{
    const int first = target.address;
    const int code = api.checkAddr(target.regType, host::addressText(target.regType, first),
                                   &target.address, 0, count, mode);
    if (code != AddressAccepted)
        return refuse(failure, host::addressVerdictText(code, target.regType, first + count - 1));
    target.count = count;
    return target;
}

} // namespace

std::optional<Setting> parseSetting(const QStringList &words, const UsualStation &usual,
                                    const host::DriverApi &api, Failure *failure)
{
    const QStringList parts = words.join(QLatin1Char(' ')).simplified().split(QLatin1Char(' '));
    const int named = addressWords(parts);
    const auto targets = parseTargets(parts.mid(0, named), usual, WriteAccess, api, failure);
    if (!targets)
        return std::nullopt;
    Setting setting { targets->constFirst(), {} };
    for (const QString &part : parts.mid(named)) {
        const auto value = parseValue(part, failure);
        if (!value)
            return std::nullopt;
        setting.values.append(*value);
    }
    const int count = host::lengthOf(setting.values);
    if (count == 0)
        return refuse(failure,
                      filled("no value given for %1; write it behind the address, such as F 8.2 20",
                             host::fullAddress(setting.target.regType, setting.target.address)));
    const bool everyRegister = setting.target.count > 1 && count == 1;
    if (everyRegister)
        setting.values.fill(setting.values.constFirst(), setting.target.count);
    const bool fits = count <= mostRegisters
        && (setting.target.count == 1 || setting.target.count == setting.values.size());
    if (!fits)
        return refuse(failure,
                      filled("%1 values for %2 registers; write the address, then one value per "
                             "register, such as F 8.2 20 15",
                             count, setting.target.count));
    const auto whole =
        lengthened(setting.target, host::lengthOf(setting.values), WriteAccess, api, failure);
    if (!whole)
        return std::nullopt;
    setting.target = *whole;
    return setting;
}

std::optional<QVector<Setting>> parseSettings(const QStringList &words, const UsualStation &usual,
                                              const host::Config &plant, const host::DriverApi &api,
                                              Failure *failure)
{
    QVector<QStringList> groups;
    for (const QString &word : words) {
        const bool isNamed = word.contains(QLatin1Char('='));
        const bool isWhole = word.trimmed().contains(QLatin1Char(' ')) && namesRegisters(word);
        const bool followsNamed =
            !groups.isEmpty() && groups.constLast().constFirst().contains(QLatin1Char('='));
        if (groups.isEmpty() || isNamed || isWhole || followsNamed)
            groups.append(QStringList { word });
        else
            groups.last().append(word);
    }
    QVector<Setting> settings;
    for (const QStringList &group : groups) {
        const bool isNamed = group.constFirst().contains(QLatin1Char('='));
        const auto setting = isNamed ? parseNamed(group.constFirst(), plant, api, failure)
                                     : parseSetting(group, usual, api, failure);
        if (!setting)
            return std::nullopt;
        settings.append(*setting);
    }
    return settings;
}

std::optional<QVector<Target>> parseCounted(const QStringList &words, int count,
                                            const UsualStation &usual, AccessMode mode,
                                            const host::DriverApi &api, Failure *failure)
{
    auto targets = parseTargets(words, usual, mode, api, failure);
    if (!targets || count == 0)
        return targets;
    if (targets->size() != 1 || targets->constFirst().count != 1)
        return refuse(failure, QStringLiteral("--count goes with one address alone"));
    const auto whole = lengthened(targets->constFirst(), count, mode, api, failure);
    if (!whole)
        return std::nullopt;
    return QVector<Target> { *whole };
}

QVector<Target> pieces(const Target &target, int blockSize)
{
    QVector<Target> cut;
    for (int done = 0; done < target.count; done += blockSize) {
        Target piece = target;
        piece.address += done;
        piece.count = std::min(blockSize, target.count - done);
        cut.append(piece);
    }
    return cut;
}

} // namespace dx4::cli
