// SPDX-License-Identifier: MIT
// What the simulated inverter's registers are called and count in: the only table of it.
#pragma once

#include "cli/watch_list.h"

namespace dx4::cli {

/// Control words of the simulated inverter, for CW.
inline constexpr quint16 runWord = 1;
inline constexpr quint16 runReverseWord = 3;
inline constexpr quint16 stopWord = 0;

/// Digits behind the point of a frequency, D 0, D 1 and FRE: they count in 0.01 Hz.
inline constexpr int frequencyDecimals = 2;

/// The register with name and unit; a plain number where the table has none.
WatchedValue namedValue(int station, const QString &regType, int address);

/// The register as a plain number.
WatchedValue plainValue(int station, const QString &regType, int address);

} // namespace dx4::cli
