// SPDX-License-Identifier: MIT
// Which registers of which station a user means.
#pragma once

#include "cli/console/exit_code.h"
#include "host/link/plugin.h"

#include <QStringList>
#include <QVector>

#include <optional>
#include <utility>

namespace dx4::cli {

// What a shell offers for an address.
inline constexpr char anyRegister[] = "F D CW FRE SW FU";
inline constexpr char readableRegister[] = "F D SW FU";
inline constexpr char writableRegister[] = "F CW FRE";

/// A run of registers that the driver accepts.
struct Target {
    int station = 1;
    QString regType;
    int address = 0; ///< internal address of the first register
    int count = 1;
};

/// A run as it was written, not yet looked at.
struct TargetText {
    int station = 1;
    QString text; ///< "F c.13"
};

/// Station of the runs that name none.
struct UsualStation {
    UsualStation(int station, QString why = {})
        : address(station)
        , whyNone(std::move(why))
    {
    }

    int address; ///< 0: there is none, and each run has to name its own
    QString whyNone; ///< for messages, "plant.toml has stations 1 and 2"
};

/// Groups words into runs: a type name begins one, the words behind it belong to it. "F c.13",
/// "Fc.13", "F" "8.0-8.3", "2:D" "4" and "SW" are all understood, and so is a Modbus register as
/// the wire has it, "@0x2000", where a type covers it. No address of a type begins with "@".
///
std::optional<QVector<TargetText>> splitTargets(const QStringList &words, const UsualStation &usual,
                                                Failure *failure);

/// Whether a word begins a run of registers, "F", "F8.3" or "2:D".
bool namesRegisters(const QString &word);

/// The same runs, checked by the driver for this kind of access.
std::optional<QVector<Target>> parseTargets(const QStringList &words, const UsualStation &usual,
                                            AccessMode mode, const host::DriverApi &api,
                                            Failure *failure);

} // namespace dx4::cli
