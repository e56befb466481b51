// SPDX-License-Identifier: MIT
// Register types and internal addresses to Modbus registers, and back.
#pragma once

#include "register_types.h"

#include <optional>

namespace dx4 {

/// A register as the driver knows it.
struct RegisterPlace {
    RegisterType type = UnknownType;
    int address = 0; ///< internal: of an "F" parameter the group in the high byte, then the index
};

/// Modbus register of an address; -1 for a type or a parameter group that there is not.
int modbusRegister(RegisterType type, int address);

/// The type that has a Modbus register, and its address; also where the drive has none of this
/// address: "F" up to index 255 of each group, "D" up to 255. None for any other register.
std::optional<RegisterPlace> placeOf(int modbusRegister);

} // namespace dx4
