// SPDX-License-Identifier: MIT
// What a line showed around a fault.
#include "panel/past/past_record.h"

#include <chrono>

namespace dx4::panel {
namespace {

host::RegisterValue unknown(const PastRegister &of)
{
    host::RegisterValue value;
    value.station = of.station;
    value.regType = of.regType;
    value.address = of.address;
    value.name = of.name;
    value.scaling = of.scaling;
    value.state.stale = true;
    return value;
}

} // namespace

/// A value that stays good is read again and again, which leaves no change: only what was not good
/// any more grew older.
host::LineSnapshot snapshotAt(const PastRecord &record, journal::Time at)
{
    host::LineSnapshot snapshot;
    snapshot.takenAt = QDateTime::fromMSecsSinceEpoch(at, Qt::UTC);
    for (const PastRegister &of : record.registers)
        snapshot.registers.append(unknown(of));
    for (const PastChange &change : record.changes) {
        if (change.time > at)
            break;
        host::Value &state = snapshot.registers[change.place].state;
        state = change.state;
        const bool isGood = state.known && !state.stale && !state.failed;
        state.age = isGood ? host::Duration(0)
                           : change.state.age + std::chrono::milliseconds(at - change.time);
    }
    for (const PastLine &line : record.line) {
        if (line.time > at)
            break;
        snapshot.isOpen = line.downReason.isEmpty();
        snapshot.downReason = line.downReason;
    }
    return snapshot;
}

} // namespace dx4::panel
