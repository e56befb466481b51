// SPDX-License-Identifier: MIT
// Which of a station's registers is what, as far as the configuration tells.
#pragma once

#include "host/service/line_snapshot.h"

namespace dx4::panel {

/// The registers of one station. They live as long as the snapshot that they were found in; null
/// where the configuration has none.
struct DriveValues {
    const host::RegisterValue *actual = nullptr; ///< first quantity in "Hz"
    const host::RegisterValue *set = nullptr; ///< second quantity in "Hz"
    const host::RegisterValue *status = nullptr; ///< "SW"
    const host::RegisterValue *fault = nullptr; ///< "FU"
    QVector<const host::RegisterValue *> others; ///< all that have a name, ascending
};

/// Finds them. What a register means is the drive's: units and names of the configuration say it,
/// never a number of a register.
DriveValues valuesOf(const host::LineSnapshot &snapshot, int station);

} // namespace dx4::panel
