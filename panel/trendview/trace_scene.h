// SPDX-License-Identifier: MIT
// All that the view draws.
#pragma once

#include "panel/trend/nice_scale.h"
#include "panel/trend/trace_reading.h"

#include <QStringList>

#include <array>
#include <optional>

namespace dx4::panel {

struct TraceScene {
    Moment from = 0;
    Moment to = 1; ///< behind the last moment
    Moment now = 0; ///< nothing is drawn behind it
    Moment shift = 0; ///< of the time of day ahead of the moments, ms
    QVector<TraceReading> traces; ///< quantities
    QVector<TraceReading> lanes; ///< bits
    QVector<Marker> markers;
    int selected = 0; ///< trace that is drawn last and thicker
    std::array<std::optional<Moment>, 2> cursors; ///< A and B
    QStringList notes; ///< what is to be known of the picture: "Feed pump", "Paused at 12:00:00"
};

/// Time of day at a moment, in the zone of this machine.
///
/// @param isFine  with tenths of a second
QString timeText(Moment at, Moment shift, bool isFine);

/// "2.5 s", "1:30", "2:05:10": a span, also one below zero.
QString spanText(Moment span);

} // namespace dx4::panel
