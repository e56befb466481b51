// SPDX-License-Identifier: MIT
// A run of registers as a user types it.
#include "host/link/address_range.h"

#include "host/base/number_text.h"
#include "register_tables.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace dx4::host {
namespace {

/// Groups and indexes of both ends; the group is empty for every type but "F".
struct Ends {
    QString firstGroup;
    QString lastGroup;
    int first;
    int last;
};

std::optional<Ends> parseEnds(const QString &regType, const QString &text)
{
    // The driver itself takes any letter for a group, some of them as group 0.
    static const QRegularExpression parameters(
        QStringLiteral("^([0-9cC])\\.([0-9]{1,2})(?:\\s*-\\s*(?:([0-9cC])\\.)?([0-9]{1,2}))?$"));
    static const QRegularExpression numbers(
        QStringLiteral("^()([0-9]{1,2})(?:\\s*-\\s*()([0-9]{1,2}))?$"));
    const auto match = (regType == REG_LIST[TypeF] ? parameters : numbers).match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString group = match.captured(1).toLower();
    const QString lastGroup = match.captured(3).toLower();
    const int first = match.captured(2).toInt();
    return Ends { group, lastGroup.isEmpty() ? group : lastGroup, first,
                  parseWholeNumber(match.captured(4)).value_or(first) };
}

bool isKnown(const QString &regType)
{
    return std::find(std::begin(REG_LIST), std::end(REG_LIST), regType) != std::end(REG_LIST);
}

QString formatHint(const QString &regType)
{
    if (regType == REG_LIST[TypeF])
        return QStringLiteral("\"F 8.2\" or \"F 8.2-8.5\", with groups 0 to 9 and c");
    if (regType == REG_LIST[TypeD])
        return QStringLiteral("\"D 4\" or \"D 0-9\"");
    return QStringLiteral("\"%1\"").arg(regType);
}

std::optional<AddressRange> refuse(const QString &why, QString *error)
{
    if (error)
        *error = why;
    return std::nullopt;
}

} // namespace

std::optional<AddressRange> parseRange(const QString &text, QString *error)
{
    const QString trimmed = text.simplified();
    const QString regType = trimmed.section(QLatin1Char(' '), 0, 0);
    const QString rest = trimmed.section(QLatin1Char(' '), 1);
    if (!isKnown(regType)) {
        return refuse(
            QStringLiteral("no register type \"%1\"; types are F, D, CW, FRE, SW, FU").arg(regType),
            error);
    }

    const bool isSingle = regType != REG_LIST[TypeF] && regType != REG_LIST[TypeD];
    const auto ends = parseEnds(regType, isSingle && rest.isEmpty() ? QStringLiteral("0") : rest);
    if (!ends)
        return refuse(QStringLiteral("not an address; write %1").arg(formatHint(regType)), error);
    if (ends->firstGroup != ends->lastGroup)
        return refuse(QStringLiteral("a run of parameters stays within one group"), error);
    if (ends->last < ends->first)
        return refuse(QStringLiteral("the run ends before it begins"), error);

    const QString group =
        ends->firstGroup.isEmpty() ? QString() : ends->firstGroup + QLatin1Char('.');
    return AddressRange { regType, group + QString::number(ends->first),
                          ends->last - ends->first + 1 };
}

} // namespace dx4::host
