// SPDX-License-Identifier: MIT
// A sheet that asks where a file is to go.
#pragma once

#include "panel/alarms/journal_port.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/sheet.h"

class QLabel;
class QLineEdit;

namespace dx4::panel {

/// Replaces a file only after it has said that there is one, and asked.
class EventSaveSheet : public Sheet {
    Q_OBJECT

public:
    /// Saves, and tells the end later.
    using Save = std::function<void(const QString &file, bool mayReplace,
                                    std::function<void(const SaveEnd &)>)>;

    EventSaveSheet(const QString &title, QWidget *page);

    /// @param file  that is proposed
    void ask(const QString &file, Save save);

    /// Takes how it ended.
    void take(const SaveEnd &end);

private:
    void saveNow();
    void reset();

    QLineEdit *m_file;
    QLabel *m_text;
    FlatButton *m_close;
    FlatButton *m_enter;
    Save m_save;
    QString m_saved; // the file that is being saved
    bool m_mayReplace = false;
    int m_asked = 0; // ends of earlier calls are left alone
};

} // namespace dx4::panel
