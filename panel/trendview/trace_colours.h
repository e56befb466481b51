// SPDX-License-Identifier: MIT
// Colours of traces.
#pragma once

#include "panel/widgets/look.h"

namespace dx4::panel {

inline constexpr int mostTraces = 8;
inline constexpr int mostLanes = 4;

/// The colour of a trace, as a line and as text on cards: its contrast to them is at least 4.5:1.
///
/// @param index  from 0; colours repeat after the last
QColor traceColour(const Look &look, int index);

} // namespace dx4::panel
