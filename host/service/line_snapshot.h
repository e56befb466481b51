// SPDX-License-Identifier: MIT
// All that is known of one line at one moment.
#pragma once

#include "host/config/scaling.h"
#include "host/runtime/runtime.h"

#include <QDateTime>
#include <QMetaType>
#include <QVector>

namespace dx4::host {

/// One register as a user sees it.
struct RegisterValue {
    int station = 0;
    QString regType;
    int address = 0; ///< internal address
    QString name; ///< as the configuration has it; empty: none
    Scaling scaling; ///< as the configuration has it; else the plain number
    Value state; ///< value, quality and age; the age is that at the moment of the snapshot, and of
                 ///< a change at the moment when it was noticed

    /// "49.98 Hz", or "-" where nothing is known.
    QString text() const;
};

/// One line at one moment. Snapshots never change; whoever holds one may read it on any thread.
struct LineSnapshot {
    bool isOpen = false;
    QString downReason; ///< why the line is not open; empty while it is
    QVector<int> lostStations; ///< stations that do not answer and are left alone, ascending
    QVector<RegisterValue> registers; ///< ascending by station, type and address
    QDateTime takenAt; ///< time of day, UTC

    /// Null for a register that is not among them: it is not polled, and was not written or read.
    const RegisterValue *find(int station, const QString &regType, int address) const;

    /// When the register was last read or confirmed, UTC; invalid where that never happened.
    QDateTime readAt(const RegisterValue &value) const;
};

} // namespace dx4::host

Q_DECLARE_METATYPE(dx4::host::RegisterValue)
