// SPDX-License-Identifier: MIT
// Recording and page of the trend, put together.
#pragma once

#include "panel/app/panel_window.h"
#include "panel/app/plant.h"
#include "panel/trend/journal_past.h"
#include "panel/trend/trend_store.h"

#include <memory>

namespace dx4::panel {

/// Records from the moment when it is made, whichever page is open. Outlives the window.
class TrendParts {
public:
    /// @param plant    outlives it
    /// @param journal  path of the journal that has what was before a restart; empty: none
    /// @param line     what the line is called in it
    TrendParts(const Plant &plant, const Clock &clock, const QString &journal, const QString &line);

    void addTo(PanelWindow &window);

private:
    const Clock m_clock;
    TrendStore m_store;
    std::unique_ptr<JournalPast> m_past; // null: no journal
};

} // namespace dx4::panel
