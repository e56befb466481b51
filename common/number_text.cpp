// SPDX-License-Identifier: MIT
// Numbers that people type, read to the letter.
#include "common/number_text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace dx4::common {
namespace {

constexpr std::uint64_t highestValue = 0xFFFF;
constexpr std::uint64_t highestInt = std::numeric_limits<int>::max();
constexpr std::uint64_t highest = std::numeric_limits<std::uint64_t>::max();

/// Of one of the characters 0 to 9, a to f and A to F; others give none.
std::optional<int> digitOf(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return std::nullopt;
}

/// Nothing but digits of the base, at least one.
bool isDigits(std::string_view text, int base)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [base](char character) {
        const std::optional<int> digit = digitOf(character);
        return digit && *digit < base;
    });
}

/// Digits of the base; `isTooLarge` where they amount to more than fits.
std::optional<std::uint64_t> parseDigits(std::string_view text, int base, bool *isTooLarge)
{
    if (!isDigits(text, base))
        return std::nullopt;
    std::uint64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    *isTooLarge = result.ec == std::errc::result_out_of_range;
    return *isTooLarge ? highest : number;
}

} // namespace

std::optional<int> parseWholeNumber(std::string_view text)
{
    bool isTooLarge = false;
    const bool isNegative = !text.empty() && text.front() == '-';
    const auto number = parseDigits(isNegative ? text.substr(1) : text, 10, &isTooLarge);
    if (!number)
        return std::nullopt;
    const int nearest = static_cast<int>(std::min(*number, highestInt));
    return isNegative ? -nearest : nearest;
}

std::optional<std::uint64_t> parseUnsigned(std::string_view text)
{
    bool isTooLarge = false;
    const auto number = parseDigits(text, 10, &isTooLarge);
    return isTooLarge ? std::nullopt : number;
}

std::optional<std::uint16_t> parseRegisterValue(std::string_view text)
{
    bool isTooLarge = false;
    const bool isHex = text.substr(0, 2) == "0x";
    const auto value = parseDigits(isHex ? text.substr(2) : text, isHex ? 16 : 10, &isTooLarge);
    if (!value || *value > highestValue)
        return std::nullopt;
    return static_cast<std::uint16_t>(*value);
}

std::optional<double> parseDecimal(std::string_view text)
{
    const std::size_t point = text.find('.');
    const bool isWhole = point == std::string_view::npos;
    const bool isNumber =
        isDigits(text.substr(0, point), 10) && (isWhole || isDigits(text.substr(point + 1), 10));
    if (!isNumber)
        return std::nullopt;
    // What is left for the library are digits and one point, which have one meaning alone.
    double number = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

} // namespace dx4::common
