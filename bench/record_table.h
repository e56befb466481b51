// SPDX-License-Identifier: MIT
// The lower bound's cache: records on the heap and a hash index over them.
#pragma once

#include "host_records.h"

#include <QString>

#include <memory>
#include <vector>

namespace bench {

/// Position of a name in the lower bound's own table; -1 for none of the six.
int typeCode(const QString &name);

/// The lower bound's shared string of a type.
const QString &typeName(int type);

/// Registers of one station and type. The name is held once, so that it is compared by its pointer.
struct Device {
    int station;
    int type;
    const QChar *name;
};

Device deviceOf(int station, int type);

/// Records found by (station, type, address), in order of creation, never removed one by one.
class RecordTable {
public:
    /// Forgets all records.
    void clear();

    int size() const { return static_cast<int>(m_records.size()); }
    _DATA_ &at(int position) { return *m_records[static_cast<std::size_t>(position)]; }

    /// Position of the register's record, which is created when it is missing; `guess` is looked at
    /// first.
    int positionOf(const Device &device, int address, int guess)
    {
        const bool isThere = guess < size() && holds(guess, device, address);
        return isThere ? guess : search(device, address);
    }

private:
    struct Slot {
        quint32 hash;
        qint32 position; ///< -1: empty
    };

    bool holds(int position, const Device &device, int address) const
    {
        const _DATA_ &record = *m_records[static_cast<std::size_t>(position)];
        return record.address == address && record.station == device.station
            && record.regType.constData() == device.name;
    }

    int search(const Device &device, int address);
    void place(Slot slot);
    void grow();

    std::vector<std::unique_ptr<_DATA_>> m_records;
    std::vector<Slot> m_slots;
};

} // namespace bench
