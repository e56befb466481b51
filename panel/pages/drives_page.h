// SPDX-License-Identifier: MIT
// The page of the drives: all as cards, one large.
#pragma once

#include "panel/pages/drive_list.h"
#include "panel/pages/drive_view.h"
#include "panel/widgets/number_pad.h"
#include "panel/widgets/page.h"

class QHBoxLayout;

namespace dx4::panel {

class DrivesPage : public Page {
    Q_OBJECT

public:
    /// @param line  outlives the page
    /// @param now   the steady clock
    DrivesPage(PanelLine &line, const std::function<host::Duration()> &now,
               QWidget *parent = nullptr);

    void refresh() override;

    /// Shows this drive large.
    void choose(int index);

    void setScale(double scale) override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void arrange();
    void askFrequency();

    PanelLine &m_line;
    DriveList *m_list;
    DriveView *m_view;
    NumberPad *m_pad;
    double m_scale = 1.0;
    int m_chosen = 0;
    int m_asked = 0; // drive that the number pad was opened for
};

} // namespace dx4::panel
