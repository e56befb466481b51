// SPDX-License-Identifier: MIT
// The drive's own way to write an address, and the register that it means.
#include "host/link/notation.h"

#include "register_tables.h"
#include "wire/register_place.h"

#include <algorithm>
#include <iterator>

namespace dx4::host {
namespace {

RegisterType typeOf(const QString &name)
{
    const auto *const found = std::find(std::begin(REG_LIST), std::end(REG_LIST), name);
    return found == std::end(REG_LIST) ? UnknownType
                                       : static_cast<RegisterType>(found - std::begin(REG_LIST));
}

} // namespace

QString addressText(const QString &regType, int address)
{
    if (regType != REG_LIST[TypeF])
        return QString::number(address);
    const int group = address / indexesPerGroup;
    return QStringLiteral("%1.%2")
        .arg(group == groupC ? QStringLiteral("c") : QString::number(group, 16))
        .arg(address % indexesPerGroup);
}

int modbusRegister(const QString &regType, int address)
{
    return dx4::modbusRegister(typeOf(regType), address);
}

QString fullAddress(const QString &regType, int address)
{
    QString text = regType + QLatin1Char(' ') + addressText(regType, address);
    const int wire = modbusRegister(regType, address);
    if (wire < 0)
        return text;
    return QStringLiteral("%1 (0x%2)").arg(text, QString::number(wire, 16).toUpper());
}

} // namespace dx4::host
