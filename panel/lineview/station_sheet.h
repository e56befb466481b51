// SPDX-License-Identifier: MIT
// Chooses one station, or all.
#pragma once

#include "panel/widgets/sheet.h"

class QGridLayout;

namespace dx4::panel {

class LineView;

class StationSheet : public Sheet {
    Q_OBJECT

public:
    static constexpr int columns = 7;
    static constexpr int mostButtons = 35; ///< with "All": what fits 800 x 480

    /// @param view  outlives the sheet
    StationSheet(LineView &view, QWidget *page);

    /// Opens it with the stations of now.
    void ask();

Q_SIGNALS:
    /// @param station  0: all
    void chosen(int station);

private:
    void addButton(int place, int station, const QString &text);

    LineView &m_view;
    QGridLayout *m_grid;
};

} // namespace dx4::panel
