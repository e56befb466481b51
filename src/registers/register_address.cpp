// SPDX-License-Identifier: MIT
// Register type and internal address to the Modbus register that goes on the wire.
#include "registers/register_address.h"

#include "register_tables.h"
#include "registers/register_type.h"
#include "wire/byte_order.h"
#include "wire/wrap.h"

namespace dx4 {
namespace {

constexpr unsigned char monitorHighByte = 0xD0;

// The word at position 6 + group counted from the first type base, where the tables have one.
int groupCode(int group)
{
    if (group >= 0 && group < parameterGroupCount)
        return REG_F_OFFSETADDR[group];
    const int position = registerTypeCount + group;
    if (group < 0 && position >= 0)
        return REG_OFFSETADDR[position];
    return 0;
}

} // namespace

RegisterAddress fixedRegister(const QString &regType, int address)
{
    const RegisterType type = registerType(regType);
    const int base = type == UnknownType ? 0 : REG_OFFSETADDR[type];
    const int sum = wrapAdd(base, address);
    return { highByte(sum), lowByte(sum) };
}

RegisterAddress parameterRegister(int address)
{
    return { lowByte(groupCode(address / 256)), lowByte(address) };
}

RegisterAddress monitorRegister(int address)
{
    return { monitorHighByte, lowByte(address) };
}

} // namespace dx4
