// SPDX-License-Identifier: MIT
// What the view is to stand still for.
#pragma once

#include "panel/trend/trend_store.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/number_pad.h"
#include "panel/widgets/sheet.h"

class QLabel;

namespace dx4::panel {

/// Waits for a fault, or for a level of the selected trace.
class TriggerSheet : public Sheet {
    Q_OBJECT

public:
    /// @param store  outlives the sheet
    /// @param now    the steady clock
    TriggerSheet(TrendStore &store, const std::function<host::Duration()> &now, QWidget *page);

    /// @param choice  the selected trace
    void ask(const TraceChoice &choice);

private:
    void askLevel(TriggerRule::When when);
    void arm(TriggerRule::When when, double level);

    TrendStore &m_store;
    TraceChoice m_choice;
    TriggerRule::When m_when = TriggerRule::When::Fault;
    QLabel *m_text;
    FlatButton *m_rises;
    FlatButton *m_falls;
    FlatButton *m_off;
    NumberPad *m_pad;
};

} // namespace dx4::panel
