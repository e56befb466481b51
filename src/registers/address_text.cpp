// SPDX-License-Identifier: MIT
// "F" address text and internal address.
#include "registers/address_text.h"

#include "wire/wrap.h"

#include <QStringList>

using namespace dx4;

namespace {

constexpr int letterToGroupC = 2; // the drive has no groups a and b

int groupNumber(const QString &text)
{
    const int digit = text.toInt(nullptr, 16);
    const bool isGroupC = text == QLatin1String("c") || text == QLatin1String("C");
    return isGroupC ? digit - letterToGroupC : digit;
}

} // namespace

int dx4::packedAddress(int group, int index)
{
    return wrapAdd(wrapMul(group, 256), index);
}

int a2i_ddd_h_dd(QString text, int &address)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    bool isNumber = false;
    const int index = parts.constLast().toInt(&isNumber, 10);
    address = packedAddress(groupNumber(parts.constFirst()), index);
    return parts.size() == 2 && isNumber ? 1 : -1;
}
