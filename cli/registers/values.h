// SPDX-License-Identifier: MIT
// Registers with the values that a user wants to give them, and runs cut to requests.
#pragma once

#include "cli/registers/target.h"
#include "host/config/config.h"

namespace dx4::cli {

/// A run of registers and one value for each.
struct Setting {
    Target target;
    QVector<quint16> values;
};

/// Takes "F 8.2 20 15", "FRE 3000" or "CW 0x0001" apart and has the driver check it. Values are 0
/// to 65535, decimal or hexadecimal with 0x.
std::optional<Setting> parseSetting(const QStringList &words, const UsualStation &usual,
                                    const host::DriverApi &api, Failure *failure);

/// One or more settings: words that begin with a register and hold a blank, "FRE 3000", begin one
/// each, and so does "name=value" or "2:name=value", which means a register that the configuration
/// names and a quantity in its unit. Other words belong to the setting before.
std::optional<QVector<Setting>> parseSettings(const QStringList &words, const UsualStation &usual,
                                              const host::Config &plant, const host::DriverApi &api,
                                              Failure *failure);

/// As parseTargets(); with a count above 0 there is one run, and that is its length.
std::optional<QVector<Target>> parseCounted(const QStringList &words, int count,
                                            const UsualStation &usual, AccessMode mode,
                                            const host::DriverApi &api, Failure *failure);

/// The run cut into pieces that fit one request each.
QVector<Target> pieces(const Target &target, int blockSize);

} // namespace dx4::cli
