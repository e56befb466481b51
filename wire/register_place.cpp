// SPDX-License-Identifier: MIT
// Register types and internal addresses to Modbus registers, and back.
#include "wire/register_place.h"

namespace dx4 {
namespace {

int parameterRegister(int address)
{
    const int group = address / indexesPerGroup;
    if (address < 0 || group >= parameterGroupCount)
        return -1;
    return parameterGroupRows[group].code * indexesPerGroup + address % indexesPerGroup;
}

std::optional<RegisterPlace> parameterOf(int modbusRegister)
{
    for (int group = 0; group < parameterGroupCount; ++group) {
        if (parameterGroupRows[group].code == modbusRegister / indexesPerGroup)
            return RegisterPlace { TypeF,
                                   group * indexesPerGroup + modbusRegister % indexesPerGroup };
    }
    return std::nullopt;
}

} // namespace

int modbusRegister(RegisterType type, int address)
{
    if (type == UnknownType)
        return -1;
    return type == TypeF ? parameterRegister(address) : registerTypeRows[type].base + address;
}

std::optional<RegisterPlace> placeOf(int modbusRegister)
{
    if (modbusRegister < 0)
        return std::nullopt;
    for (int type = TypeD; type < registerTypeCount; ++type) {
        const RegisterTypeRow &row = registerTypeRows[type];
        const int address = modbusRegister - row.base;
        if (address >= 0 && address < (row.isSingle() ? 1 : indexesPerGroup))
            return RegisterPlace { static_cast<RegisterType>(type), address };
    }
    return parameterOf(modbusRegister);
}

} // namespace dx4
