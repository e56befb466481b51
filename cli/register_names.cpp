// SPDX-License-Identifier: MIT
// What the simulated inverter's registers are called and count in: the only table of it.
#include "cli/register_names.h"

#include "host/notation.h"

namespace dx4::cli {
namespace {

struct Row {
    const char *regType;
    int address;
    const char *name;
    const char *unit;
    int decimals;
    bool bits;
};

constexpr int parameter(int group, int index)
{
    return group * 256 + index;
}

// A real drive has a manual of its own; these are the simulated inverter's choice.
constexpr Row rows[] = {
    { "D", 0, "Output frequency", "Hz", 2, false },
    { "D", 1, "Set frequency", "Hz", 2, false },
    { "D", 2, "Output current", "A", 1, false },
    { "D", 3, "Output voltage", "V", 0, false },
    { "D", 4, "DC link voltage", "V", 0, false },
    { "D", 5, "Heat sink temperature", "C", 1, false },
    { "D", 6, "Output power", "kW", 2, false },
    { "D", 7, "Motor speed", "1/min", 0, false },
    { "D", 8, "Status word", "", 0, true },
    { "D", 9, "Fault", "", 0, false },
    { "D", 10, "Last fault", "", 0, false },
    { "D", 11, "Faults so far", "", 0, false },
    { "D", 12, "Time with the output on", "s", 0, false },
    { "D", 13, "Time since power on", "s", 0, false },
    { "CW", 0, "Control word", "", 0, true },
    { "FRE", 0, "Set frequency", "Hz", 2, false },
    { "SW", 0, "Status word", "", 0, true },
    { "FU", 0, "Fault code", "", 0, false },
    { "F", parameter(8, 0), "Highest output frequency", "Hz", 2, false },
    { "F", parameter(8, 1), "Lowest set frequency", "Hz", 2, false },
    { "F", parameter(8, 2), "Acceleration time", "s", 1, false },
    { "F", parameter(8, 3), "Deceleration time", "s", 1, false },
    { "F", parameter(8, 4), "Rated voltage", "V", 0, false },
    { "F", parameter(8, 5), "Rated current", "A", 1, false },
    { "F", parameter(8, 6), "Rated frequency", "Hz", 2, false },
    { "F", parameter(8, 7), "Torque of the load", "%", 0, false },
    { "F", parameter(8, 8), "Longest time unasked", "s", 1, false },
};

} // namespace

WatchedValue plainValue(int station, const QString &regType, int address)
{
    return { station, regType, address, QString(), QString(), 0, false };
}

WatchedValue namedValue(int station, const QString &regType, int address)
{
    for (const Row &row : rows) {
        if (regType == QLatin1String(row.regType) && address == row.address)
            return { station,
                     regType,
                     address,
                     QString::fromLatin1(row.name),
                     QString::fromLatin1(row.unit),
                     row.decimals,
                     row.bits };
    }
    WatchedValue value = plainValue(station, regType, address);
    if (regType == QLatin1String("F"))
        value.name = QStringLiteral("Parameter %1").arg(host::addressText(regType, address));
    return value;
}

} // namespace dx4::cli
