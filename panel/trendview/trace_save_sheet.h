// SPDX-License-Identifier: MIT
// Where a table or a picture of the trend goes.
#pragma once

#include "panel/trend/file_saver.h"
#include "panel/trend/trace_key.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/sheet.h"

class QLabel;
class QLineEdit;

namespace dx4::panel {

/// Asks for the place, and once more before a file is replaced. What was seen when it was opened is
/// saved.
class TraceSaveSheet : public Sheet {
    Q_OBJECT

public:
    struct Writers {
        FileSaver::Writer csv;
        FileSaver::Writer png;
    };

    explicit TraceSaveSheet(QWidget *page);

    /// @param at  time of day of what is saved, for the name of the file
    void ask(const Writers &writers, Moment at);

private:
    void makeRows();
    void setKind(const QString &suffix);
    void save(FileSaver::Replace replace);
    void tell(const QString &text, bool isBad);

    Writers m_writers;
    QString m_suffix;
    FileSaver m_saver;
    QLabel *m_text;
    QLineEdit *m_path;
    FlatButton *m_csv;
    FlatButton *m_png;
    FlatButton *m_save;
    FlatButton *m_replace;
    FlatButton *m_close;
};

} // namespace dx4::panel
