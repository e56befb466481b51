// SPDX-License-Identifier: MIT
// Register type and internal address to the Modbus register that goes on the wire.
#pragma once

#include <QString>

namespace dx4 {

/// Address bytes of a request.
struct RegisterAddress {
    unsigned char high;
    unsigned char low;
};

/// Register of a type at a fixed base: base plus internal address. An unknown type has base 0.
RegisterAddress fixedRegister(const QString &regType, int address);

/// Register of an "F" parameter: the group's code and the index.
///
/// The group is not checked against the drive: numbers -6 to 10 take their code from the two offset
/// tables, any other gives 0. A request goes out either way, so that one bad address cannot
/// stop the rotation of the others.
RegisterAddress parameterRegister(int address);

/// Register of a monitor value: 0xD0 and the low byte of the internal address.
RegisterAddress monitorRegister(int address);

} // namespace dx4
