// SPDX-License-Identifier: MIT
// What asks for one side: a drive or a file.
#pragma once

#include "panel/parameters/choice_list.h"
#include "panel/parameters/parameter_book.h"
#include "panel/parameters/parameter_files.h"
#include "panel/widgets/sheet.h"

class QLabel;

namespace dx4::panel {

class SourceSheet : public Sheet {
    Q_OBJECT

public:
    /// @param book, files  outlive the sheet
    SourceSheet(ParameterBook &book, ParameterFiles &files, QWidget *page);

    void ask(ParameterBook::Place place);

Q_SIGNALS:
    /// Something could not be read.
    void failed(const QString &text);

private:
    struct Entry {
        Choice choice;
        std::function<void()> act;
    };

    void listSources();
    void listFolder(const FolderContent &content);
    void openFolder(const QString &folder);
    void load(const QString &path);
    void show(const QString &text, const QVector<Entry> &entries);
    using QWidget::show;

    ParameterBook &m_book;
    ParameterFiles &m_files;
    ParameterBook::Place m_place = ParameterBook::First;
    QLabel *m_text;
    ChoiceList *m_list;
    QVector<Entry> m_entries;
};

} // namespace dx4::panel
