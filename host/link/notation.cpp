// SPDX-License-Identifier: MIT
// The drive's own way to write an address, and the register that it means.
#include "host/link/notation.h"

#include "register_tables.h"

namespace dx4::host {
namespace {

constexpr int groupC = 10;
constexpr int indexesPerGroup = 256;

int parameterRegister(int address)
{
    const int group = address / indexesPerGroup;
    if (address < 0 || group >= parameterGroupCount)
        return -1;
    return REG_F_OFFSETADDR[group] * indexesPerGroup + address % indexesPerGroup;
}

} // namespace

QString addressText(const QString &regType, int address)
{
    if (regType != REG_LIST[0])
        return QString::number(address);
    const int group = address / indexesPerGroup;
    return QStringLiteral("%1.%2")
        .arg(group == groupC ? QStringLiteral("c") : QString::number(group, 16))
        .arg(address % indexesPerGroup);
}

int modbusRegister(const QString &regType, int address)
{
    if (regType == REG_LIST[0])
        return parameterRegister(address);
    for (int type = 1; type < registerTypeCount; ++type) {
        if (regType == REG_LIST[type])
            return REG_OFFSETADDR[type] + address;
    }
    return -1;
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
