// SPDX-License-Identifier: MIT
// Which register a trace is of.
#pragma once

#include "host/config/scaling.h"
#include "panel/trend/column.h"

#include <QMetaType>
#include <QString>

#include <tuple>

namespace dx4::panel {

struct TraceKey {
    int station = 0;
    QString regType;
    int address = 0; ///< internal address
};

inline bool operator<(const TraceKey &a, const TraceKey &b)
{
    return std::tie(a.station, a.regType, a.address) < std::tie(b.station, b.regType, b.address);
}

inline bool operator==(const TraceKey &a, const TraceKey &b)
{
    return a.station == b.station && a.regType == b.regType && a.address == b.address;
}

/// A register as it can be chosen.
struct TraceInfo {
    TraceKey key;
    QString drive; ///< name of the station
    QString name;
    host::Scaling scaling;
    Counts counts = Counts::Unsigned;
};

/// A register, or one bit of it.
struct TraceChoice {
    TraceKey key;
    int bit = -1; ///< -1: the register as a quantity
};

inline bool operator==(const TraceChoice &a, const TraceChoice &b)
{
    return a.key == b.key && a.bit == b.bit;
}

/// Something that happened, at its moment.
struct Marker {
    enum class Kind { Write, Fault, Trigger };

    Moment at = 0;
    Kind kind = Kind::Write;
    int station = 0;
    QString text; ///< one line
};

} // namespace dx4::panel
