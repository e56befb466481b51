// SPDX-License-Identifier: MIT
// A plot without room around it.
#pragma once

class QwtPlot;

namespace dx4::panel {

/// Has the canvas reach to the edges of its scales.
void setTight(QwtPlot &plot);

} // namespace dx4::panel
