// SPDX-License-Identifier: MIT
// The drive's own way to write an address, and the register that it means.
#pragma once

#include <QString>

namespace dx4::host {

/// Address text as the editor shows it: "c.13" for "F", plain decimal for every other type.
///
/// @param address  internal address
QString addressText(const QString &regType, int address);

/// Modbus register of an address of one of the six types; -1 for another type or group.
int modbusRegister(const QString &regType, int address);

/// Both forms, as every message shows them: "F c.13 (0xFC0D)".
QString fullAddress(const QString &regType, int address);

} // namespace dx4::host
