// SPDX-License-Identifier: MIT
// What asks for the name of a file to save to.
#pragma once

#include "panel/parameters/parameter_book.h"
#include "panel/parameters/parameter_files.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/sheet.h"

class QLabel;
class QLineEdit;

namespace dx4::panel {

class SaveSheet : public Sheet {
    Q_OBJECT

public:
    /// @param book, files  outlive the sheet
    SaveSheet(ParameterBook &book, ParameterFiles &files, QWidget *page);

    /// @param place  a drive that was read, as far as that went
    void ask(ParameterBook::Place place);

private:
    void save();
    void takeResult(const SaveResult &result);

    ParameterBook &m_book;
    ParameterFiles &m_files;
    host::ParameterSet m_set; // as it was when it was asked
    QLabel *m_text;
    QLineEdit *m_name;
    QLabel *m_folder;
    QLabel *m_result;
    FlatButton *m_save;
    FlatButton *m_close;
    bool m_isAgreed = false; // the next press replaces another station's file
};

} // namespace dx4::panel
