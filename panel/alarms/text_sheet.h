// SPDX-License-Identifier: MIT
// A sheet with a text that was too long for its row.
#pragma once

#include "panel/widgets/sheet.h"

class QLabel;

namespace dx4::panel {

class FlatButton;

class TextSheet : public Sheet {
    Q_OBJECT

public:
    TextSheet(const QString &title, QWidget *page);

    void tell(const QString &text);

private:
    QLabel *m_text;
    FlatButton *m_close;
};

} // namespace dx4::panel
