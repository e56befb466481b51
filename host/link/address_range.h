// SPDX-License-Identifier: MIT
// A run of registers as a user types it.
#pragma once

#include <QString>

#include <optional>

namespace dx4::host {

/// "F 8.0-8.3" taken apart; not yet checked against the drive's ranges.
struct AddressRange {
    QString regType;
    QString firstText; ///< address text of the first register, for the driver's check
    int count = 1; ///< registers
};

/// Takes a text such as "F c.13", "F 8.0-8.3", "D 0-9" or "SW" apart. The types of one register
/// may be written without their address.
///
/// @param error  out: what is wrong and what would be right; may be null
std::optional<AddressRange> parseRange(const QString &text, QString *error);

} // namespace dx4::host
