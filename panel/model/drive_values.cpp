// SPDX-License-Identifier: MIT
// Which of a station's registers is what, as far as the configuration tells.
#include "panel/model/drive_values.h"

namespace dx4::panel {
namespace {

void place(const host::RegisterValue &value, DriveValues &values)
{
    const bool isFrequency = value.scaling.unit == QLatin1String("Hz");
    if (value.regType == QLatin1String("SW"))
        values.status = &value;
    else if (value.regType == QLatin1String("FU"))
        values.fault = &value;
    else if (isFrequency && !values.actual)
        values.actual = &value;
    else if (isFrequency && !values.set)
        values.set = &value;
    else if (!value.name.isEmpty())
        values.others.append(&value);
}

} // namespace

DriveValues valuesOf(const host::LineSnapshot &snapshot, int station)
{
    DriveValues values;
    for (const host::RegisterValue &value : snapshot.registers) {
        if (value.station == station)
            place(value, values);
    }
    return values;
}

} // namespace dx4::panel
