// SPDX-License-Identifier: MIT
// What registers are called and count in: by the configuration, or in the simulated inverter.
#pragma once

#include "cli/registers/watch_list.h"
#include "host/config/config.h"
#include "host/link/plugin.h"

#include <map>
#include <tuple>

namespace dx4::cli {

/// Control words of the simulated inverter, for CW.
inline constexpr quint16 runWord = 1;
inline constexpr quint16 runReverseWord = 3;
inline constexpr quint16 stopWord = 0;

/// The register with name and unit of the simulated inverter; a plain number where it has none.
WatchedValue namedValue(int station, const QString &regType, int address);

/// The register as a plain number.
WatchedValue plainValue(int station, const QString &regType, int address);

/// Looks names, units, scaling and the words of states and faults up: what the configuration says
/// goes first. Its words replace those of the simulated inverter as a whole: where a drive has
/// other bits the rest of them would be wrong too.
class RegisterNames {
public:
    RegisterNames() = default;

    /// @param api        reads the addresses of the configuration
    /// @param simulated  also with the names of the simulated inverter
    RegisterNames(const host::Config &plant, const host::DriverApi &api, bool simulated);

    WatchedValue of(int station, const QString &regType, int address) const;

    /// The same for every register, or every pair.
    QVector<WatchedValue> of(const QVector<Target> &targets, const Pair &pair = {}) const;

    /// Names of a run's registers, in their order, without those that have none.
    QStringList namesIn(int station, const QString &regType, int address, int count) const;

private:
    WatchedValue found(int station, const QString &regType, int address) const;

    using RegisterKey = std::tuple<int, QString, int>; // station, type, address

    std::map<RegisterKey, WatchedValue> m_configured; // those that are described
    QMap<int, QString> m_states; // of the configuration
    QMap<int, QString> m_faults;
    bool m_simulated = false;
};

} // namespace dx4::cli
