// SPDX-License-Identifier: MIT
// The cache of register values: find or create a record, monitor marks.
#pragma once

#include "host_records.h"
#include "korvane_dx4.h"
#include "korvane_dx4/data_area_index.h"
#include "wire/register_type.h"
#include "wire/wrap.h"

#include <QList>
#include <QString>

#include <algorithm>

namespace dx4 {

/// Bits of _DATA_::flags, by number.
enum MonitorBit {
    MonitoredWord = 0, ///< the register is monitored as a value of its own
    MonitoredDoubleStart = 1, ///< it is the first register of a monitored two-register value
    MonitoredDoubleEnd = 2, ///< it is the second
};

/// A run of registers by value: it outlives the list entry it was read from.
struct RegisterRange {
    int station;
    RegisterType type;
    int address;
    int count;
};

/// The registers of a variable.
RegisterRange rangeOf(const VARIABLE &var);

/// Records that stand side by side and belong to consecutive registers.
struct RecordRun {
    int position; ///< of the first in driver.dataAreas
    int count; ///< at least 1
};

/// Where records of a type were found last: position less address, for each type. A guess, checked
/// against the record each time, that spares a search when a host asks for the same registers again
/// or for their neighbours.
extern int foundOffsets[registerTypeCount + 1];

/// Finds the records of one station and type, quickest in ascending order of address. Needs a
/// CacheScope scope.
///
/// Registers that are used together were mostly created together, so a record is first looked for
/// where it stands if it does so in order.
class RegisterFinder {
public:
    explicit RegisterFinder(const RegisterOwner &owner)
        : m_owner(owner)
        , m_type(std::min<quint32>(owner.typeBits, registerTypeCount))
        , m_offset(foundOffsets[m_type])
    {
    }

    /// The records of the register and of those behind it, as far as they stand side by side. The
    /// first is created when it is missing.
    ///
    /// @param most  at least 1
    RecordRun runFrom(int address, int most)
    {
        const int expected = wrapAdd(m_offset, address);
        const int position = standsAt(expected, address) ? expected : lookUp(address);
        const bool continuesRun = position == expected && position == m_behind;
        if (continuesRun && standsAt(position - 1, wrapSub(address, 1)))
            dataAreaIndex.join(position);
        const int count = most > 1 ? dataAreaIndex.joinedFrom(position, most) : 1;
        m_behind = position + count;
        return { position, count };
    }

    /// Position of the register's record, which is created when it is missing. Positions stay valid
    /// until the link is started anew.
    int positionOf(int address) { return runFrom(address, 1).position; }

    /// A position found before the host was called; looked up again if the record has left it.
    int positionAgain(int position, int address)
    {
        return standsAt(position, address) ? position : positionOf(address);
    }

private:
    bool standsAt(int position, int address) const
    {
        const QList<_DATA_> &areas = driver.dataAreas;
        const bool isInside = position >= 0 && position < areas.size();
        return isInside && hasKey(areas.at(position), { m_owner, address });
    }

    int lookUp(int address)
    {
        const int position = dataAreaIndex.findOrAppend({ m_owner, address });
        m_offset = foundOffsets[m_type] = wrapSub(position, address);
        return position;
    }

    RegisterOwner m_owner;
    quint32 m_type; // of the offsets
    int m_offset; // of the last record looked up
    int m_behind = -1; // position behind the last run
};

/// The 16-bit value that a register shows: the written one while its write is pending.
int shownValue(const _DATA_ &area);

/// Low byte and high byte of the shown value; two bytes.
inline const unsigned char *shownBytes(const _DATA_ &area)
{
    return area.writePending ? area.writeValue : area.value;
}

/// Drops every monitor mark of the cache.
void clearMonitorMarks();

/// Marks registers as monitored values and creates their records; nothing for an unknown type.
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
