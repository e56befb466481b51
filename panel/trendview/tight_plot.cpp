// SPDX-License-Identifier: MIT
// A plot without room around it. In a file of its own, as the header of the library's layout needs
// a conversion that Qt calls deprecated and that the rest of the panel does without.
#include "panel/trendview/tight_plot.h"

#include <qwt_plot.h>
#include <qwt_plot_layout.h>

namespace dx4::panel {

void setTight(QwtPlot &plot)
{
    plot.plotLayout()->setCanvasMargin(0);
    plot.plotLayout()->setSpacing(0);
    plot.plotLayout()->setAlignCanvasToScales(true);
}

} // namespace dx4::panel
