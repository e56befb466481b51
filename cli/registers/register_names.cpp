// SPDX-License-Identifier: MIT
// What registers are called and count in: by the configuration, or in the simulated inverter.
#include "cli/registers/register_names.h"

#include "common/state_names.h"
#include "host/link/address_range.h"
#include "host/link/notation.h"

#include <array>

namespace dx4::cli {
namespace {

enum class Kind { Number, Command, State, Fault };

struct Row {
    const char *regType;
    int address;
    const char *name;
    const char *unit;
    int decimals;
    Kind kind = Kind::Number;
};

constexpr int parameter(int group, int index)
{
    return group * 256 + index;
}

// A real drive has a manual of its own; these are the simulated inverter's choice.
constexpr Row rows[] = {
    { "D", 0, "Output frequency", "Hz", 2 },
    { "D", 1, "Set frequency", "Hz", 2 },
    { "D", 2, "Output current", "A", 1 },
    { "D", 3, "Output voltage", "V", 0 },
    { "D", 4, "DC link voltage", "V", 0 },
    { "D", 5, "Heat sink temperature", "C", 1 },
    { "D", 6, "Output power", "kW", 2 },
    { "D", 7, "Motor speed", "1/min", 0 },
    { "D", 8, "Status word", "", 0, Kind::State },
    { "D", 9, "Fault", "", 0, Kind::Fault },
    { "D", 10, "Last fault", "", 0, Kind::Fault },
    { "D", 11, "Faults so far", "", 0 },
    { "D", 12, "Time with the output on", "s", 0 },
    { "D", 13, "Time since power on", "s", 0 },
    { "CW", 0, "Control word", "", 0, Kind::Command },
    { "FRE", 0, "Set frequency", "Hz", 2 },
    { "SW", 0, "Status word", "", 0, Kind::State },
    { "FU", 0, "Fault code", "", 0, Kind::Fault },
    { "F", parameter(8, 0), "Highest output frequency", "Hz", 2 },
    { "F", parameter(8, 1), "Lowest set frequency", "Hz", 2 },
    { "F", parameter(8, 2), "Acceleration time", "s", 1 },
    { "F", parameter(8, 3), "Deceleration time", "s", 1 },
    { "F", parameter(8, 4), "Rated voltage", "V", 0 },
    { "F", parameter(8, 5), "Rated current", "A", 1 },
    { "F", parameter(8, 6), "Rated frequency", "Hz", 2 },
    { "F", parameter(8, 7), "Torque of the load", "%", 0 },
    { "F", parameter(8, 8), "Longest time unasked", "s", 1 },
};

template <std::size_t count>
QMap<int, QString> simulatedWords(const std::array<const char *, count> &names)
{
    QMap<int, QString> words;
    for (std::size_t i = 0; i < count; ++i)
        words.insert(static_cast<int>(i),
                     QString::fromLatin1(names[i]).replace(QLatin1Char('-'), QLatin1Char(' ')));
    return words;
}

/// Values that the last shown digit counts in.
constexpr std::array<double, 3> factors = { 1.0, 0.1, 0.01 };

/// The registers of one entry of a configuration; none when the driver does not know the address.
QVector<WatchedValue> valuesOf(int station, const host::RegisterConfig &entry,
                               const host::DriverApi &api)
{
    QVector<WatchedValue> values;
    const auto range = host::parseRange(entry.at, nullptr);
    int address = 0;
    const bool known = range
        && api.checkAddr(range->regType, range->firstText, &address, 0, range->count, ReadAccess)
            == AddressAccepted;
    for (int i = 0; known && i < range->count; ++i)
        values.append({ station, range->regType, address + i, entry.name, entry.scaling, false });
    return values;
}

} // namespace

WatchedValue plainValue(int station, const QString &regType, int address)
{
    return { station, regType, address, QString(), host::Scaling(), false };
}

WatchedValue namedValue(int station, const QString &regType, int address)
{
    WatchedValue value = plainValue(station, regType, address);
    for (const Row &row : rows) {
        if (regType != QLatin1String(row.regType) || address != row.address)
            continue;
        value.name = QString::fromLatin1(row.name);
        value.scaling.unit = QString::fromLatin1(row.unit);
        value.scaling.decimals = row.decimals;
        value.scaling.factor = factors.at(static_cast<std::size_t>(row.decimals));
        value.bits = row.kind == Kind::Command || row.kind == Kind::State;
        if (row.kind == Kind::State)
            value.words = simulatedWords(common::statusNames);
        else if (row.kind == Kind::Fault)
            value.words = simulatedWords(common::faultNames);
        return value;
    }
    if (regType == QLatin1String("F"))
        value.name = filled("Parameter %1", host::addressText(regType, address));
    return value;
}

RegisterNames::RegisterNames(const host::Config &plant, const host::DriverApi &api, bool simulated)
    : m_states(plant.states)
    , m_faults(plant.faults)
    , m_simulated(simulated)
{
    for (const host::StationConfig &station : plant.stations) {
        for (const host::RegisterConfig &entry : station.registers) {
            for (const WatchedValue &value : valuesOf(station.address, entry, api)) {
                if (isDescribed(value)) // the first entry counts
                    m_configured.emplace(
                        RegisterKey { value.station, value.regType, value.address }, value);
            }
        }
    }
}

WatchedValue RegisterNames::of(int station, const QString &regType, int address) const
{
    WatchedValue value = found(station, regType, address);
    const WatchedValue simulated = namedValue(station, regType, address);
    const bool isState = simulated.bits && !simulated.words.isEmpty();
    const bool isFault = !simulated.bits && !simulated.words.isEmpty();
    // Without --names the monitor registers may be anything; SW and FU are what they are.
    const bool isKnown =
        m_simulated || regType == QLatin1String("SW") || regType == QLatin1String("FU");
    const QMap<int, QString> &own = isState ? m_states : m_faults;
    if (!isKnown || !(isState || isFault) || (own.isEmpty() && !m_simulated))
        return value;
    value.words = own.isEmpty() ? simulated.words : own;
    const bool isPlain = value.scaling.factor == 1.0 && value.scaling.offset == 0.0;
    value.bits = value.bits || (isState && isPlain);
    return value;
}

QVector<WatchedValue> RegisterNames::of(const QVector<Target> &targets, const Pair &pair) const
{
    QVector<WatchedValue> values;
    for (const Target &target : targets) {
        for (int i = 0; i < target.count; i += pair.length()) {
            values.append(of(target.station, target.regType, target.address + i));
            values.last().pair = pair;
        }
    }
    return values;
}

WatchedValue RegisterNames::found(int station, const QString &regType, int address) const
{
    const auto configured = m_configured.find({ station, regType, address });
    if (configured != m_configured.end())
        return configured->second;
    return m_simulated ? namedValue(station, regType, address)
                       : plainValue(station, regType, address);
}

QStringList RegisterNames::namesIn(int station, const QString &regType, int address,
                                   int count) const
{
    QStringList names;
    for (int i = 0; i < count; ++i) {
        const QString name = of(station, regType, address + i).name;
        if (!name.isEmpty())
            names.append(name);
    }
    return names;
}

} // namespace dx4::cli
