// SPDX-License-Identifier: MIT
// What asks for one side: a drive or a file.
#include "panel/parameters/source_sheet.h"

#include <QDir>
#include <QLabel>
#include <QVBoxLayout>

namespace dx4::panel {

SourceSheet::SourceSheet(ParameterBook &book, ParameterFiles &files, QWidget *page)
    : Sheet(tr("Which parameters?"), page)
    , m_book(book)
    , m_files(files)
    , m_text(new QLabel)
    , m_list(new ChoiceList)
{
    setObjectName(QStringLiteral("source"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    auto *cancel = new FlatButton(tr("Cancel"));
    content()->addWidget(m_text);
    content()->addWidget(m_list, 1);
    content()->addWidget(cancel);
    connect(cancel, &FlatButton::clicked, this, &Sheet::close);
    connect(m_list, &ChoiceList::chosen, this, [this](int index) {
        if (isOpen() && index < m_entries.size())
            m_entries.at(index).act();
    });
}

void SourceSheet::ask(ParameterBook::Place place)
{
    m_place = place;
    listSources();
    open();
    m_list->setFocus();
}

void SourceSheet::show(const QString &text, const QVector<Entry> &entries)
{
    m_text->setText(text);
    m_entries = entries;
    QVector<Choice> choices;
    for (const Entry &entry : entries)
        choices.append(entry.choice);
    m_list->setChoices(choices);
}

void SourceSheet::listSources()
{
    QVector<Entry> entries;
    entries.append(
        { { tr("File..."), tr("of this machine") }, [this] { openFolder(m_files.folder()); } });
    for (const host::StationConfig &drive : m_book.config().stations) {
        const int station = drive.address;
        entries.append(
            { { m_book.nameOf(station), tr("station %1").arg(station) }, [this, station] {
                 close();
                 m_book.showDrive(m_place, station);
             } });
    }
    entries.append({ { tr("Nothing"), {} }, [this] {
                        close();
                        m_book.showNothing(m_place);
                    } });
    show(m_place == ParameterBook::First ? tr("On the left: where values come from.")
                                         : tr("On the right: the drive that values may be "
                                              "written to."),
         entries);
}

void SourceSheet::openFolder(const QString &folder)
{
    m_files.open(folder, [this](const FolderContent &content) {
        if (isOpen())
            listFolder(content);
    });
}

void SourceSheet::listFolder(const FolderContent &content)
{
    if (!content.error.isEmpty()) {
        Q_EMIT failed(content.error);
        return;
    }
    const QDir folder(content.path);
    QVector<Entry> entries;
    for (const QString &file : content.files) {
        const QString path = folder.filePath(file);
        entries.append({ { file, {} }, [this, path] { load(path); } });
    }
    for (const QString &name : content.folders) {
        const QString path = folder.filePath(name);
        entries.append({ { name, tr("folder") }, [this, path] { openFolder(path); } });
    }
    const QString above = QDir::cleanPath(folder.filePath(QStringLiteral("..")));
    if (!folder.isRoot())
        entries.append({ { tr("One folder up"), above }, [this, above] { openFolder(above); } });
    show(content.files.isEmpty() ? tr("%1: no file NAME.txt is here.").arg(content.path)
                                 : content.path,
         entries);
}

void SourceSheet::load(const QString &path)
{
    m_files.load(path,
                 [this, path](const std::optional<host::ParameterSet> &set, const QString &error) {
                     if (!isOpen())
                         return;
                     close();
                     if (set)
                         m_book.showFile(m_place, path, *set);
                     else
                         Q_EMIT failed(error);
                 });
}

} // namespace dx4::panel
