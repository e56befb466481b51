// SPDX-License-Identifier: MIT
// The driver's verdicts on addresses in words.
#include "host/link/address_verdict.h"

#include "host/link/notation.h"
#include "register_tables.h"
#include "result_codes.h"

namespace dx4::host {
namespace {

QString noSuchGroup()
{
    return QStringLiteral("no such group; groups are 0 to 9 and c");
}

QString outOfRange(const QString &regType, int address)
{
    const QString where = fullAddress(regType, address);
    if (regType == REG_LIST[TypeD]) {
        const int last = registerTypeRows[TypeD].registers - 1;
        return QStringLiteral("%1 is out of range; D reaches from 0 to %2 (0x%3)")
            .arg(where)
            .arg(last)
            .arg(QString::number(modbusRegister(regType, last), 16).toUpper());
    }
    if (regType != REG_LIST[TypeF])
        return QStringLiteral("%1 is out of range; %2 has address 0 alone").arg(where, regType);
    const int group = address / indexesPerGroup;
    if (address < 0 || group >= parameterGroupCount)
        return noSuchGroup();
    const int first = group * indexesPerGroup;
    return QStringLiteral("%1 is out of range; the group reaches from %2 to %3")
        .arg(where, fullAddress(regType, first),
             fullAddress(regType, first + REG_F_ADDRESS[group][1]));
}

/// "F, CW and FRE", the types with this right.
QString typesThatAre(bool RegisterTypeRow::*right)
{
    QStringList names;
    for (const RegisterTypeRow &row : registerTypeRows) {
        if (row.*right)
            names.append(QString::fromLatin1(row.name));
    }
    const QString last = names.takeLast();
    return QStringLiteral("%1 and %2").arg(names.join(QStringLiteral(", ")), last);
}

} // namespace

QStringList registerTypeNames()
{
    QStringList names;
    for (const QString &name : REG_LIST)
        names.append(name);
    return names;
}

QString addressVerdictText(int code, const QString &regType, int address)
{
    switch (code) {
    case AddressAccepted:
        return QStringLiteral("%1 is acceptable").arg(fullAddress(regType, address));
    case AddressNotOffered:
        return QStringLiteral("%1 is not offered").arg(regType);
    case AddressOutOfRange:
        return outOfRange(regType, address);
    case AddressTypeUnknown:
        return registerTypeNames().contains(regType)
            ? noSuchGroup()
            : QStringLiteral("no register type \"%1\"; types are %2")
                  .arg(regType, registerTypeNames().join(QStringLiteral(", ")));
    case AddressReadOnly:
        return QStringLiteral("%1 can only be read; %2 can be written")
            .arg(regType, typesThatAre(&RegisterTypeRow::isWritable));
    case AddressWriteOnly:
        return QStringLiteral("%1 can only be written; %2 can be read")
            .arg(regType, typesThatAre(&RegisterTypeRow::isReadable));
    case AddressTooLong:
        return QStringLiteral("the address has too many characters");
    default:
        return QStringLiteral("not an address of type %1").arg(regType);
    }
}

} // namespace dx4::host
