// SPDX-License-Identifier: MIT
// Numbers that people type, read to the letter.
#include "host/number_text.h"

#include <algorithm>
#include <limits>

namespace dx4::host {
namespace {

constexpr int highestValue = 0xFFFF;

/// Of one of the characters 0 to 9, a to f and A to F; others give none.
std::optional<int> digitOf(QChar character)
{
    const ushort code = character.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    if (code >= 'a' && code <= 'f')
        return code - 'a' + 10;
    if (code >= 'A' && code <= 'F')
        return code - 'A' + 10;
    return std::nullopt;
}

/// Nothing but digits of the base, at least one; the highest int where they amount to more.
std::optional<int> parseDigits(const QString &text, int base)
{
    qint64 number = 0;
    for (const QChar character : text) {
        const std::optional<int> digit = digitOf(character);
        if (!digit || *digit >= base)
            return std::nullopt;
        number = std::min<qint64>(number * base + *digit, std::numeric_limits<int>::max());
    }
    return text.isEmpty() ? std::nullopt : std::optional(static_cast<int>(number));
}

} // namespace

std::optional<int> parseWholeNumber(const QString &text)
{
    const bool isNegative = text.startsWith(QLatin1Char('-'));
    const std::optional<int> number = parseDigits(isNegative ? text.mid(1) : text, 10);
    return number && isNegative ? std::optional(-*number) : number;
}

std::optional<quint16> parseRegisterValue(const QString &text)
{
    const bool isHex = text.startsWith(QLatin1String("0x"));
    const std::optional<int> value = isHex ? parseDigits(text.mid(2), 16) : parseDigits(text, 10);
    if (!value || *value > highestValue)
        return std::nullopt;
    return static_cast<quint16>(*value);
}

std::optional<double> parseDecimal(const QString &text)
{
    const int point = static_cast<int>(text.indexOf(QLatin1Char('.')));
    const bool isWhole = point < 0;
    const bool isNumber = parseDigits(isWhole ? text : text.left(point), 10)
        && (isWhole || parseDigits(text.mid(point + 1), 10));
    // What is left for the library are digits and one point, which have one meaning alone.
    return isNumber ? std::optional(text.toDouble()) : std::nullopt;
}

} // namespace dx4::host
