// SPDX-License-Identifier: MIT
// What is asked when the window is to be closed while a motor runs.
#pragma once

#include "panel/model/panel_line.h"
#include "panel/widgets/hold_button.h"
#include "panel/widgets/sheet.h"

class QLabel;

namespace dx4::panel {

/// Stops the drives and waits for their echoes. Where they do not come, closing asks for more than
/// a tap: somebody has to go and look at the motor.
class ClosingSheet : public Sheet {
    Q_OBJECT

public:
    ClosingSheet(PanelLine &line, std::function<host::Duration()> now, QWidget *page);

    /// Asks anew.
    void ask();

Q_SIGNALS:
    /// The window may go.
    void agreed();

private:
    void stopAndClose();
    void takeEnd(const QVector<int> &unconfirmed);

    PanelLine &m_line;
    QLabel *m_text;
    FlatButton *m_stay;
    FlatButton *m_stop;
    HoldButton *m_leave;
    bool m_isWaiting = false;
};

} // namespace dx4::panel
