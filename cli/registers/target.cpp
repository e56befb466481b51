// SPDX-License-Identifier: MIT
// Which registers of which station a user means.
#include "cli/registers/target.h"

#include "cli/console/nearest_word.h"
#include "cli/registers/frame_text.h"
#include "host/base/number_text.h"
#include "host/link/address_range.h"
#include "host/link/address_verdict.h"
#include "host/link/notation.h"
#include "wire/limits.h"

#include <QRegularExpression>

namespace dx4::cli {
namespace {

/// One word taken apart: "2:Fc.13" is station 2, letters "F", address "c.13".
struct Word {
    QString station;
    QString letters; ///< empty when the word goes on with the run before
    QString address;
};

Word takeApart(const QString &text)
{
    static const QRegularExpression shape(QStringLiteral("^(?:([0-9]+):)?([A-Za-z]*)(.*)$"));
    const auto match = shape.match(text);
    Word word { match.captured(1), match.captured(2), match.captured(3) };
    // The group "c" is a letter too; it stands right before the point.
    if (word.address.startsWith(QLatin1Char('.')) && !word.letters.isEmpty()) {
        word.address.prepend(word.letters.at(word.letters.size() - 1));
        word.letters.chop(1);
    }
    return word;
}

/// The station of a run.
///
/// @param written  in front of it; may be empty
/// @param part     the run, for messages
std::optional<int> stationOf(const QString &written, const QString &part, const UsualStation &usual,
                             Failure *failure)
{
    const int station = host::parseWholeNumber(written).value_or(usual.address);
    if (station >= 1 && station <= lastStation)
        return station;
    const QString given = written.isEmpty() ? QString::number(station) : written;
    return refuse(
        failure,
        written.isEmpty() && station == 0 ? filled(
            "\"%1\" names no station, and %2; name one with --station, or in front as in 2:D 4",
            part, usual.whyNone)
                                          : filled("no station %1; stations are 1 to 247", given));
}

/// "@0xD000" or "2:@0xD000-0xD003", a Modbus register as the wire has it, as the type and address
/// that the driver knows it by.
std::optional<TargetText> parseRaw(const QString &part, const UsualStation &usual, Failure *failure)
{
    static const QRegularExpression shape(
        QStringLiteral("^(?:([0-9]+):)?@([0-9A-Fa-fx]+)(?:-@?([0-9A-Fa-fx]+))?$"));
    const auto match = shape.match(part);
    const auto first = host::parseRegisterValue(match.captured(2));
    const auto last =
        match.captured(3).isEmpty() ? first : host::parseRegisterValue(match.captured(3));
    if (!first || !last || *last < *first)
        return refuse(
            failure,
            filled("\"%1\" is no register of the wire; write @0x2000 or 2:@0xD000-0xD003", part));
    QString types[2];
    int addresses[2] = {};
    const bool isKnown = findRegister(*first, &types[0], &addresses[0])
        && findRegister(*last, &types[1], &addresses[1]);
    if (!isKnown || types[0] != types[1])
        return refuse(
            failure,
            filled("\"%1\": no register type covers that; \"dx4 types\" lists them", part));
    QString text = types[0] + QLatin1Char(' ') + host::addressText(types[0], addresses[0]);
    if (*last > *first)
        text += QLatin1Char('-') + host::addressText(types[0], addresses[1]);
    const auto station = stationOf(match.captured(1), part, usual, failure);
    return station ? std::optional(TargetText { *station, text }) : std::nullopt;
}

bool checkType(const QString &regType, Failure *failure)
{
    if (host::registerTypeNames().contains(regType))
        return true;
    refuse(failure,
           filled("no register type \"%1\"; types are %2%3", regType,
                  host::registerTypeNames().join(QStringLiteral(", ")),
                  suggestion(regType, host::registerTypeNames())));
    return false;
}

std::optional<Target> parseTarget(const TargetText &text, AccessMode mode,
                                  const host::DriverApi &api, Failure *failure)
{
    if (!checkType(text.text.section(QLatin1Char(' '), 0, 0), failure))
        return std::nullopt;
    QString reason;
    const auto range = host::parseRange(text.text, &reason);
    if (!range)
        return refuse(failure, filled("\"%1\": %2", text.text, reason));
    Target target { text.station, range->regType, 0, range->count };
    const int code =
        api.checkAddr(range->regType, range->firstText, &target.address, 0, range->count, mode);
    if (code == AddressAccepted)
        return target;
    const int last = target.address + range->count - 1;
    const QString verdict = host::addressVerdictText(code, range->regType, last);
    const bool namesAddress =
        code == AddressOutOfRange || code == AddressReadOnly || code == AddressWriteOnly;
    return refuse(failure, namesAddress ? verdict : filled("\"%1\": %2", text.text, verdict));
}

} // namespace

std::optional<QVector<TargetText>> splitTargets(const QStringList &words, const UsualStation &usual,
                                                Failure *failure)
{
    QVector<TargetText> runs;
    const QStringList parts = words.join(QLatin1Char(' ')).simplified().split(QLatin1Char(' '));
    for (const QString &part : parts) {
        if (part.contains(QLatin1Char('@'))) {
            const auto raw = parseRaw(part, usual, failure);
            if (!raw)
                return std::nullopt;
            runs.append(*raw);
            continue;
        }
        const Word word = takeApart(part);
        if (word.letters.isEmpty() && (runs.isEmpty() || !word.station.isEmpty()))
            return refuse(
                failure,
                filled("\"%1\" names no register type; write \"F c.13\" or \"2:D 4\"", part));
        if (word.letters.isEmpty()) {
            runs.last().text += QLatin1Char(' ') + word.address;
            continue;
        }
        const auto station = stationOf(word.station, part, usual, failure);
        if (!station)
            return std::nullopt;
        runs.append({ *station, (word.letters + QLatin1Char(' ') + word.address).trimmed() });
    }
    return runs;
}

bool namesRegisters(const QString &word)
{
    const auto runs = splitTargets({ word }, 1, nullptr);
    return runs
        && host::registerTypeNames().contains(
            runs->constFirst().text.section(QLatin1Char(' '), 0, 0));
}

std::optional<QVector<Target>> parseTargets(const QStringList &words, const UsualStation &usual,
                                            AccessMode mode, const host::DriverApi &api,
                                            Failure *failure)
{
    const auto texts = splitTargets(words, usual, failure);
    if (!texts)
        return std::nullopt;
    QVector<Target> targets;
    for (const TargetText &text : *texts) {
        const auto target = parseTarget(text, mode, api, failure);
        if (!target)
            return std::nullopt;
        targets.append(*target);
    }
    return targets;
}

} // namespace dx4::cli
