// SPDX-License-Identifier: MIT
// The driver's verdicts on addresses in words.
#pragma once

#include <QStringList>

namespace dx4::host {

/// The driver's verdict on an address in words, with what would be right.
///
/// @param code     of intf_checkAddr
/// @param address  as the driver converted it; meant by AddressOutOfRange alone
QString addressVerdictText(int code, const QString &regType, int address);

/// Names of all register types.
QStringList registerTypeNames();

} // namespace dx4::host
