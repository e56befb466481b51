// SPDX-License-Identifier: MIT
// Numbers that people type, read to the letter.
#pragma once

#include <QString>

#include <optional>

namespace dx4::host {

/// Reads "42": the digits 0 to 9 alone, with a minus in front or none. No plus, blank, exponent or
/// prefix, no digits of other scripts, nothing behind.
///
/// @return nothing where the text is no such number; one that is too large gives the nearest int,
///         which no range of this program holds
std::optional<int> parseWholeNumber(const QString &text);

/// Reads a register's value: 0 to 65535, or 0x0 to 0xFFFF with digits of either case.
std::optional<quint16> parseRegisterValue(const QString &text);

/// Reads "30", "30.5" or "0.25": digits, and behind a point digits again; not negative.
std::optional<double> parseDecimal(const QString &text);

} // namespace dx4::host
