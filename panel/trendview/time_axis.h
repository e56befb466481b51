// SPDX-License-Identifier: MIT
// The labels below the plot.
#pragma once

#include "panel/trend/nice_scale.h"

#include <qwt_scale_draw.h>

namespace dx4::panel {

/// Time of day at round moments, the date at midnight.
class TimeAxis : public QwtScaleDraw {
public:
    /// @param margin  ms at both ends in which a label would be cut
    void show(const TimeTicks &ticks, Moment from, Moment to, Moment shift, Moment margin);

    QwtText label(double value) const override;

private:
    TimeTicks m_ticks;
    Moment m_from = 0; // of the labels
    Moment m_to = 0;
    Moment m_shift = 0;
};

} // namespace dx4::panel
