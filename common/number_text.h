// SPDX-License-Identifier: MIT
// Numbers that people type, read to the letter.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace dx4::common {

/// Reads "42": the digits 0 to 9 alone, with a minus in front or none. No plus, blank, exponent or
/// prefix, no digits of other scripts, nothing behind.
///
/// @return nothing where the text is no such number; one that is too large gives the nearest int,
///         which no range of these programs holds
std::optional<int> parseWholeNumber(std::string_view text);

/// Reads digits alone, up to 18446744073709551615; nothing for a larger number.
std::optional<std::uint64_t> parseUnsigned(std::string_view text);

/// Reads a register's value: 0 to 65535, or 0x0 to 0xFFFF with digits of either case.
std::optional<std::uint16_t> parseRegisterValue(std::string_view text);

/// Reads "30", "30.5" or "0.25": digits, and behind a point digits again; not negative,
/// and no more than a double takes.
std::optional<double> parseDecimal(std::string_view text);

} // namespace dx4::common
