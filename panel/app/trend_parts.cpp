// SPDX-License-Identifier: MIT
// Recording and page of the trend, put together.
#include "panel/app/trend_parts.h"

#include "panel/trendview/trend_page.h"

namespace dx4::panel {

TrendParts::TrendParts(const Plant &plant, const Clock &clock, const QString &journal,
                       const QString &line)
    : m_clock(clock)
    , m_store(plant.running.config, portOf(*plant.service).snapshot, clock)
{
    m_store.follow(*plant.service);
    if (journal.isEmpty())
        return;
    m_past = std::make_unique<JournalPast>(journal, line);
    remember(m_store, *m_past);
}

void TrendParts::addTo(PanelWindow &window)
{
    window.addPage(new TrendPage(m_store, m_clock.steady), PanelWindow::tr("Trend"));
}

} // namespace dx4::panel
