// SPDX-License-Identifier: MIT
// Checks of addresses typed in the host's editor.
#include "driver_api.h"
#include "registers/address_text.h"
#include "registers/register_type.h"

#include <QStringList>

#include <cstring>

using namespace dx4;

namespace {

constexpr int notOffered = 0; // typeFlag
constexpr int noSubIndex = -1;

// In 64 bits: a run that is too long for 32 is out of range too.
qint64 endOf(int address, int count)
{
    return qint64 { address } + count;
}

// Deliberate: a group that has no row is accepted.
AddressCheck checkParameterRange(int address, int count)
{
    const int group = address / indexesPerGroup;
    if (group < 0 || group >= parameterGroupCount)
        return AddressAccepted;
    const int lowest = packedAddress(group, REG_F_ADDRESS[group][0]);
    const int behindHighest = packedAddress(group, REG_F_ADDRESS[group][1]) + 1;
    const bool inRange = lowest <= address && endOf(address, count) <= behindHighest;
    return inRange ? AddressAccepted : AddressOutOfRange;
}

AddressCheck checkParameter(const QString &text, int &address, int count)
{
    if (a2i_ddd_h_dd(text, address) != 1)
        return AddressMalformed;
    return checkParameterRange(address, count);
}

AddressCheck checkNumber(const QString &text, int &address, int count, int registers)
{
    bool isNumber = false;
    address = text.toInt(&isNumber, 10);
    if (!isNumber)
        return AddressMalformed;
    const bool inRange = address >= 0 && endOf(address, count) <= registers;
    return inRange ? AddressAccepted : AddressOutOfRange;
}

AddressCheck checkText(RegisterType type, const QString &text, int *address, int count)
{
    int unwanted = 0;
    int &converted = address ? *address : unwanted;
    const RegisterTypeRow *row = rowOf(type);
    if (!row)
        return AddressTypeUnknown;
    return type == TypeF ? checkParameter(text, converted, count)
                         : checkNumber(text, converted, count, row->registers);
}

// As long as the type's format; a single digit where there is no type.
std::size_t longestText(const RegisterTypeRow *row)
{
    return row ? std::strlen(row->format) : 1;
}

// The drive has no groups a and b. Read as hexadecimal digits, a would be the number of group c and
// b a number that no group has.
bool namesMissingGroup(const QString &text)
{
    const QString group = text.split(QLatin1Char('.')).constFirst();
    return group == QLatin1String("a") || group == QLatin1String("A") || group == QLatin1String("b")
        || group == QLatin1String("B");
}

AddressCheck checkAccess(const RegisterTypeRow &row, int accessMode)
{
    const bool reads = accessMode == ReadAccess || accessMode == ReadWriteAccess;
    const bool writes = accessMode == WriteAccess || accessMode == ReadWriteAccess;
    if (!row.isWritable && writes)
        return AddressReadOnly;
    if (!row.isReadable && reads)
        return AddressWriteOnly;
    return AddressAccepted;
}

} // namespace

int intf_checkAddrValidity(QString regType, QString addrText, int *address, int count, int typeFlag)
{
    const RegisterType type = registerType(regType);
    if (type != UnknownType && typeFlag == notOffered)
        return AddressNotOffered;
    const bool isSigned =
        addrText.contains(QLatin1Char('-')) || addrText.contains(QLatin1Char('+'));
    if (isSigned)
        return AddressMalformed;
    return checkText(type, addrText, address, count);
}

int intf_checkAddr(QString regType, QString addrText, int *address, int subIndex, int count,
                   int accessMode)
{
    const RegisterType type = registerType(regType);
    const RegisterTypeRow *row = rowOf(type);
    if (row && subIndex == noSubIndex)
        return AddressNotOffered;
    if (static_cast<std::size_t>(addrText.size()) > longestText(row))
        return AddressTooLong;
    if (type == TypeF && namesMissingGroup(addrText))
        return AddressTypeUnknown;
    const AddressCheck access = row ? checkAccess(*row, accessMode) : AddressAccepted;
    if (access != AddressAccepted)
        return access;
    return checkText(type, addrText, address, count);
}
