// SPDX-License-Identifier: MIT
// What asks for the name of a file to save to.
#include "panel/parameters/save_sheet.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {

SaveSheet::SaveSheet(ParameterBook &book, ParameterFiles &files, QWidget *page)
    : Sheet(tr("Save parameters to a file"), page)
    , m_book(book)
    , m_files(files)
    , m_text(new QLabel)
    , m_name(new QLineEdit)
    , m_folder(new QLabel)
    , m_result(new QLabel)
    , m_save(new FlatButton(tr("Save")))
    , m_close(new FlatButton(tr("Cancel")))
{
    setObjectName(QStringLiteral("save"));
    for (QLabel *label : { m_text, m_folder, m_result }) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    m_name->setMinimumHeight(targetSize);
    m_name->setTextMargins(targetGap, 0, targetGap, 0);
    m_name->setAccessibleName(tr("Name of the file"));
    m_result->setObjectName(QStringLiteral("result"));
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    row->addWidget(m_close);
    row->addWidget(m_save);
    content()->addWidget(m_text);
    content()->addWidget(m_name);
    content()->addWidget(m_folder);
    m_result->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    content()->addWidget(m_result, 1);
    content()->addLayout(row);
    connect(m_close, &FlatButton::clicked, this, &Sheet::close);
    connect(m_save, &FlatButton::clicked, this, &SaveSheet::save);
    connect(m_name, &QLineEdit::textChanged, this, [this](const QString &name) {
        m_isAgreed = false;
        m_save->setText(tr("Save"));
        m_save->setEnabled(!name.trimmed().isEmpty());
    });
}

void SaveSheet::ask(ParameterBook::Place place)
{
    const ParameterSide &drive = m_book.side(place);
    m_set = drive.set;
    const QString what =
        tr("%1 parameters of %2, station %3")
            .arg(QString::number(m_set.values.size()), drive.name, QString::number(m_set.station));
    m_text->setText(
        host::isComplete(m_set)
            ? tr("%1, read %2 ago.").arg(what, spanText(m_book.now() - *drive.readAt))
            : tr("%1. The reading is not complete, and the file will say so.").arg(what));
    m_name->clear();
    m_name->setText(QStringLiteral("station-%1.txt").arg(m_set.station));
    m_folder->setText(tr("in %1").arg(m_files.folder()));
    m_result->clear();
    m_close->setText(tr("Cancel"));
    m_save->setVisible(true);
    m_name->setEnabled(true);
    open();
    m_name->setFocus();
}

void SaveSheet::save()
{
    QString name = m_name->text().trimmed();
    // What the list of files shows has this ending.
    if (!name.endsWith(QStringLiteral(".txt")))
        name += QStringLiteral(".txt");
    m_save->setEnabled(false);
    m_files.save(QDir(m_files.folder()).filePath(name), m_set, m_isAgreed,
                 [this](const SaveResult &result) { takeResult(result); });
}

void SaveSheet::takeResult(const SaveResult &result)
{
    using Kind = SaveResult::Kind;
    const Look look = lookOf(palette());
    const bool isSaved = result.kind == Kind::Saved;
    m_result->setText(result.text);
    setTextColour(*m_result, isSaved ? look.text : look.warning);
    m_isAgreed = result.kind == Kind::OtherStation;
    m_save->setText(m_isAgreed ? tr("Replace it") : tr("Save"));
    m_save->setEnabled(true);
    if (!isSaved)
        return;
    m_save->setVisible(false);
    m_name->setEnabled(false);
    m_close->setText(tr("Close"));
    m_close->setFocus();
    m_book.noteSaved(m_set.station, m_set);
}

} // namespace dx4::panel
