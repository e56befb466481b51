// SPDX-License-Identifier: MIT
// The cache of register values: find or create a record, monitor marks.
#pragma once

#include "host_records.h"
#include "korvane_dx4.h"
#include "korvane_dx4/data_area_index.h"
#include "registers/register_type.h"
#include "wire/wrap.h"

#include <QList>
#include <QString>

namespace dx4 {

/// Bits of _DATA_::flags, by number.
enum MonitorBit {
    MonitoredWord = 0, ///< the register is monitored as a value of its own
    MonitoredDoubleStart = 1, ///< it is the first register of a monitored two-register value
    MonitoredDoubleEnd = 2, ///< it is the second
};

/// The registers of a variable.
RegisterRange rangeOf(const VARIABLE &var);

/// The 16-bit value that a register shows: the written one while its write is pending.
int shownValue(const _DATA_ &area);

/// Low byte and high byte of the shown value; two bytes.
inline const unsigned char *shownBytes(const _DATA_ &area)
{
    return area.writePending ? area.writeValue : area.value;
}

/// Drops every monitor mark of the cache. Needs a CacheScope.
void clearMonitorMarks();

/// Marks registers as monitored values and creates their records; nothing for an unknown type.
/// Needs a CacheScope, one for all that is marked: behind a nested one the index believes that the
/// host was called, and goes through the whole list again for the next record that is missing.
void markMonitored(int station, const QString &regType, int address, int count);

} // namespace dx4

/// Position of a record in `list`, appended there when it is missing.
int getIndexOfDataArea(int station, QString regType, int address, QList<_DATA_> &list);

/// Marks `count` registers as monitored values; nothing for an unknown type or a count below 1.
/// @return 0
int _setDataAreaMonitorFlag(int station, QString regType, int address, int count);

/// `value` with one bit set (`on` nonzero) or cleared.
///
/// @param bit  taken modulo 256; 32 to 255 leave the value as it is
int _setBitValue(int value, int bit, int on);
