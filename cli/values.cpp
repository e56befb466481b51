// SPDX-License-Identifier: MIT
// Registers with the values that a user wants to give them, and runs cut to requests.
#include "cli/values.h"

#include "host/address_verdict.h"
#include "host/length.h"
#include "host/notation.h"
#include "host/number_text.h"

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
        ? QStringLiteral("\"%1\" begins another address, and a command takes one; values of "
                         "registers in a row stand together, such as F 8.2 20 15, other registers "
                         "take a command each")
        : QStringLiteral("\"%1\" is no value; values are 0 to 65535 or 0x0 to 0xFFFF");
    *failure = { ExitUsage, why.arg(text) };
    return std::nullopt;
}

/// Words that name the register; the values follow.
int addressWords(const QStringList &parts)
{
    const bool hasOneRegister = parts.constFirst().endsWith(QLatin1String("CW"))
        || parts.constFirst().endsWith(QLatin1String("FRE"));
    const bool inOneWord = parts.constFirst().contains(QLatin1Char('.'));
    return hasOneRegister || inOneWord ? 1 : 2;
}

std::optional<Target> lengthened(Target target, int count, AccessMode mode,
                                 const host::DriverApi &api, Failure *failure)
{
    const int first = target.address;
    const int code = api.checkAddr(target.regType, host::addressText(target.regType, first),
                                   &target.address, 0, count, mode);
    if (code != AddressAccepted) {
        *failure = { ExitUsage, host::addressVerdictText(code, target.regType, first + count - 1) };
        return std::nullopt;
    }
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
    if (count == 0) {
        *failure = { ExitUsage,
                     QStringLiteral("no value given for %1; write it behind the address, such as "
                                    "F 8.2 20")
                         .arg(host::fullAddress(setting.target.regType, setting.target.address)) };
        return std::nullopt;
    }
    const bool everyRegister = setting.target.count > 1 && count == 1;
    if (everyRegister)
        setting.values.fill(setting.values.constFirst(), setting.target.count);
    const bool fits = count <= mostRegisters
        && (setting.target.count == 1 || setting.target.count == setting.values.size());
    if (!fits) {
        *failure = { ExitUsage,
                     QStringLiteral("%1 values for %2 registers; write the address, then one value "
                                    "per register, such as F 8.2 20 15")
                         .arg(count)
                         .arg(setting.target.count) };
        return std::nullopt;
    }
    const auto whole =
        lengthened(setting.target, host::lengthOf(setting.values), WriteAccess, api, failure);
    if (!whole)
        return std::nullopt;
    setting.target = *whole;
    return setting;
}

std::optional<QVector<Target>> parseCounted(const QStringList &words, int count,
                                            const UsualStation &usual, AccessMode mode,
                                            const host::DriverApi &api, Failure *failure)
{
    auto targets = parseTargets(words, usual, mode, api, failure);
    if (!targets || count == 0)
        return targets;
    if (targets->size() != 1 || targets->constFirst().count != 1) {
        *failure = { ExitUsage, QStringLiteral("--count goes with one address alone") };
        return std::nullopt;
    }
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
