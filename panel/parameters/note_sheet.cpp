// SPDX-License-Identifier: MIT
// What tells that something could not be done.
#include "panel/parameters/note_sheet.h"

#include <QVBoxLayout>

namespace dx4::panel {

NoteSheet::NoteSheet(QWidget *page)
    : Sheet(tr("That did not work"), page)
    , m_lines(new LinePager)
{
    setObjectName(QStringLiteral("note"));
    auto *close = new FlatButton(tr("Close"));
    content()->addWidget(m_lines, 1);
    content()->addWidget(close);
    connect(close, &FlatButton::clicked, this, &Sheet::close);
}

void NoteSheet::tell(const QString &text)
{
    m_lines->setLines(isOpen() ? m_lines->lines() + QStringList(text) : QStringList(text));
    open();
}

} // namespace dx4::panel
