// SPDX-License-Identifier: MIT
// A sheet that asks where a file is to go.
#include "panel/alarms/event_save_sheet.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {

EventSaveSheet::EventSaveSheet(const QString &title, QWidget *page)
    : Sheet(title, page)
    , m_file(new QLineEdit)
    , m_text(new QLabel)
    , m_close(new FlatButton(tr("Cancel")))
    , m_enter(new FlatButton(tr("Save")))
{
    setObjectName(QStringLiteral("save"));
    m_file->setMinimumHeight(targetSize);
    m_file->setAccessibleName(tr("File"));
    m_enter->setObjectName(QStringLiteral("save now"));
    m_text->setObjectName(QStringLiteral("save text"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    content()->addWidget(m_file);
    content()->addWidget(m_text);
    content()->addStretch();
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    row->addWidget(m_close, 1);
    row->addWidget(m_enter, 1);
    content()->addLayout(row);
    connect(m_close, &FlatButton::clicked, this, &Sheet::close);
    connect(m_enter, &FlatButton::clicked, this, &EventSaveSheet::saveNow);
    connect(m_file, &QLineEdit::textEdited, this, &EventSaveSheet::reset);
}

void EventSaveSheet::ask(const QString &file, Save save)
{
    m_save = std::move(save);
    m_file->setText(file);
    reset();
    open();
    m_file->setFocus();
}

void EventSaveSheet::reset()
{
    ++m_asked;
    m_mayReplace = false;
    m_text->clear();
    m_close->setText(tr("Cancel"));
    m_enter->setText(tr("Save"));
    m_enter->setVisible(true);
    m_enter->setEnabled(!m_file->text().isEmpty());
}

void EventSaveSheet::saveNow()
{
    m_saved = QDir::cleanPath(QDir::home().absoluteFilePath(m_file->text()));
    m_enter->setEnabled(false);
    m_text->setText(tr("Saving."));
    setTextColour(*m_text, lookOf(palette()).text);
    const int asked = ++m_asked;
    m_save(m_saved, m_mayReplace,
           [self = QPointer<EventSaveSheet>(this), asked](const SaveEnd &end) {
               if (self && self->m_asked == asked)
                   self->take(end);
           });
}

void EventSaveSheet::take(const SaveEnd &end)
{
    const Look look = lookOf(palette());
    const bool isSaved = end.kind == SaveEnd::Kind::Saved;
    m_mayReplace = end.kind == SaveEnd::Kind::IsThere;
    if (isSaved)
        m_text->setText(tr("Saved as %1").arg(m_saved));
    else if (m_mayReplace)
        m_text->setText(
            tr("%1 is there already. Replace it, or choose another name.").arg(m_saved));
    else
        m_text->setText(tr("Not saved: %1").arg(end.error));
    setTextColour(*m_text, isSaved ? look.text : look.warning);
    m_enter->setText(m_mayReplace ? tr("Replace the file") : tr("Save"));
    m_enter->setVisible(!isSaved);
    m_enter->setEnabled(true);
    m_close->setText(isSaved ? tr("Close") : tr("Cancel"));
}

} // namespace dx4::panel
