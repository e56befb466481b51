// SPDX-License-Identifier: MIT
// A sheet with a text that was too long for its row.
#include "panel/alarms/text_sheet.h"

#include "panel/widgets/flat_button.h"

#include <QLabel>
#include <QVBoxLayout>

namespace dx4::panel {

TextSheet::TextSheet(const QString &title, QWidget *page)
    : Sheet(title, page)
    , m_text(new QLabel)
    , m_close(new FlatButton(tr("Close")))
{
    setObjectName(QStringLiteral("details"));
    m_text->setObjectName(QStringLiteral("details text"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignTop);
    content()->addWidget(m_text, 1);
    content()->addWidget(m_close);
    connect(m_close, &FlatButton::clicked, this, &Sheet::close);
}

void TextSheet::tell(const QString &text)
{
    m_text->setText(text);
    open();
    m_close->setFocus();
}

} // namespace dx4::panel
