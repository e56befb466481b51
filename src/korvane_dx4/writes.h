// SPDX-License-Identifier: MIT
// Writes: shown at once, settled when the device has answered or the request is given up.
#pragma once

#include "korvane_dx4/data_areas.h"

#include <QString>

namespace dx4 {

enum class WriteOutcome { Failed, Confirmed };

/// Ends the pending writes of registers; nothing for an unknown type.
///
/// Confirmed: the written value becomes the device value, silently. Failed: the host is told of
/// each register whose written value differs from the device value. The host may call back in.
void settleWrite(const RegisterRange &range, WriteOutcome outcome);

} // namespace dx4

/// Shows written values at once and reports each register whose shown value changes.
///
/// The report comes before the value is stored, so that a callback still reads the old one.
///
/// @param data  2 * count bytes; null stores nothing
void write_saveDataToArea(int station, QString regType, int address, int count,
                          unsigned char *data);

/// settleWrite for the driver's callers: `success` 1 means confirmed, any other value failed.
void _write_FailOrSuc(int station, QString regType, int address, int count, int success);
