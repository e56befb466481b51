// SPDX-License-Identifier: MIT
// What a line showed around a fault.
#pragma once

#include "host/service/line_snapshot.h"
#include "journal/records.h"

#include <QMap>
#include <QVector>

#include <optional>

namespace dx4::panel {

/// Around a fault that much is kept, in milliseconds.
inline constexpr journal::Time pastBefore = 30'000;
inline constexpr journal::Time pastAfter = 5'000;

/// A register that was shown.
struct PastRegister {
    int station = 0;
    QString regType;
    int address = 0; ///< internal address
    QString name;
    host::Scaling scaling;
};

/// What became known of one of the registers.
struct PastChange {
    journal::Time time = 0;
    int place = 0; ///< in PastRecord::registers
    host::Value state; ///< with its age at that time
};

/// The line opened, or went down.
struct PastLine {
    journal::Time time = 0;
    QString downReason; ///< empty: it is open
};

/// A frame that the line carried, CRC included.
struct PastFrame {
    journal::Time time = 0;
    bool isRequest = true;
    QByteArray bytes;
};

/// All of it, in the order in which it came.
struct PastRecord {
    journal::Time faultAt = 0;
    int station = 0; ///< whose fault it was
    int code = 0;
    journal::Time from = 0; ///< what is known reaches from here
    journal::Time to = 0;
    QMap<int, QString> drives; ///< names by station, all stations of the configuration
    QMap<int, QString> states; ///< words of the bits of "SW"
    QMap<int, QString> faults; ///< words of the codes
    QVector<PastRegister> registers;
    QVector<PastChange> changes; ///< those at `from` are what was known already
    QVector<PastLine> line;
    std::optional<QVector<PastFrame>> frames; ///< nothing: they were not kept
    /// Writes of parameters since the program was started; nothing: no journal told of them.
    std::optional<QVector<journal::Event>> parameters;
};

/// The line at one moment, as a panel would have shown it then.
host::LineSnapshot snapshotAt(const PastRecord &record, journal::Time at);

} // namespace dx4::panel
