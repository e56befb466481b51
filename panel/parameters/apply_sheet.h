// SPDX-License-Identifier: MIT
// What asks before parameters are written, and tells what came of it.
#pragma once

#include "panel/parameters/line_pager.h"
#include "panel/parameters/parameter_restore.h"
#include "panel/widgets/hold_button.h"
#include "panel/widgets/sheet.h"

class QLabel;

namespace dx4::panel {

/// Names drive, source and number of registers, and wants its button held.
class ApplySheet : public Sheet {
    Q_OBJECT

public:
    /// @param restore  outlives the sheet
    /// @param now      the steady clock
    ApplySheet(ParameterRestore &restore, std::function<host::Duration()> now, QWidget *page);

    /// Asks for what is ticked now, or shows the restore under way.
    void ask();

    /// Looks at the motor anew, and opens where a restore has ended that nobody was told of.
    void refresh();

private:
    void leave();
    void begin();
    void showQuestion();
    void showProgress();
    void showReport();

    ParameterRestore &m_restore;
    RestorePlan m_plan; // as it was when it was asked
    QLabel *m_text;
    QLabel *m_refusal;
    LinePager *m_lines;
    FlatButton *m_agree;
    HoldButton *m_write;
    FlatButton *m_close;
    FlatButton *m_end;
};

} // namespace dx4::panel
