// SPDX-License-Identifier: MIT
// What tells that something could not be done.
#pragma once

#include "panel/parameters/line_pager.h"
#include "panel/widgets/sheet.h"

namespace dx4::panel {

class NoteSheet : public Sheet {
    Q_OBJECT

public:
    explicit NoteSheet(QWidget *page);

    /// Adds to what is told already.
    void tell(const QString &text);

private:
    LinePager *m_lines;
};

} // namespace dx4::panel
