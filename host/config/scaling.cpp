// SPDX-License-Identifier: MIT
// From a register's 16 bits to the quantity that a user reads, and back.
#include "host/config/scaling.h"

#include <cmath>

namespace dx4::host {

double Scaling::quantity(quint16 value) const
{
    const double counts = isSigned ? static_cast<qint16>(value) : value;
    return counts * factor + offset;
}

std::optional<quint16> Scaling::registerValue(double quantity) const
{
    const double counts = std::round((quantity - offset) / factor);
    const bool fits =
        isSigned ? counts >= -32768.0 && counts <= 32767.0 : counts >= 0.0 && counts <= 65535.0;
    if (!fits) // also when the quantity is no number
        return std::nullopt;
    return static_cast<quint16>(static_cast<int>(counts) & 0xFFFF);
}

QString Scaling::text(quint16 value) const
{
    const QString number = QString::number(quantity(value), 'f', decimals);
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}

} // namespace dx4::host
