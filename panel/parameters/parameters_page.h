// SPDX-License-Identifier: MIT
// The page of the parameters: read, compared, saved, and written where somebody holds a button.
#pragma once

#include "panel/parameters/group_bar.h"
#include "panel/parameters/parameter_files.h"
#include "panel/parameters/parameter_restore.h"
#include "panel/parameters/parameter_view.h"
#include "panel/parameters/two_line_button.h"
#include "panel/widgets/page.h"

#include <QTimer>

class QBoxLayout;
class QLabel;

namespace dx4::panel {

class ApplySheet;
class DetailSheet;
class NoteSheet;
class SaveSheet;
class SearchSheet;
class SourceSheet;

/// What the page is made of. Whatever the functions stand on outlives it.
struct ParametersSetup {
    ParameterPort port;
    host::Config config;
    Clock clock;
    ParameterRestore::Standings standing;
    Runner runner; ///< for files and journal
    QString folder; ///< of files, at first
    LineJournal journal;
};

class ParametersPage : public Page {
    Q_OBJECT

public:
    explicit ParametersPage(const ParametersSetup &setup, QWidget *parent = nullptr);

    void follow(const host::LineService &service);

    void refresh() override;
    void setScale(double scale) override;

    ParameterBook &book() { return m_book; }
    ParameterRestore &restore() { return m_restore; }
    ParameterTable &table() { return m_table; }

private:
    QBoxLayout *makeTop();
    QBoxLayout *makeMiddle();
    QBoxLayout *makeSide();
    void makeSheets(const std::function<host::Duration()> &now);
    void connectButtons();
    void readOrCancel();
    void showSide(ParameterBook::Place place);
    void showButtons();
    QString emptyText() const;
    ParameterBook::Place savedPlace() const;

    ParameterBook m_book;
    ParameterRestore m_restore;
    ParameterFiles m_files;
    ParameterJournal m_journal;
    ParameterTable m_table;
    std::optional<host::Duration> m_journalReadAt;
    QTimer m_guard; // looks at the motor while a restore is under way, whatever page is shown
    GroupBar *m_groups = nullptr;
    TwoLineButton *m_sides[2] = { nullptr, nullptr };
    FlatButton *m_read = nullptr;
    FlatButton *m_save = nullptr;
    FlatButton *m_apply = nullptr;
    QLabel *m_counts = nullptr;
    ParameterView *m_view = nullptr;
    FlatButton *m_only = nullptr;
    FlatButton *m_tickAll = nullptr;
    FlatButton *m_find = nullptr;
    FlatButton *m_up = nullptr;
    FlatButton *m_down = nullptr;
    SourceSheet *m_source = nullptr;
    SaveSheet *m_saving = nullptr;
    SearchSheet *m_search = nullptr;
    ApplySheet *m_writing = nullptr;
    DetailSheet *m_detail = nullptr;
    NoteSheet *m_note = nullptr;
};

} // namespace dx4::panel
