// SPDX-License-Identifier: MIT
// The page of the alarms: what is, and what was.
#pragma once

#include "panel/alarms/alarm_model.h"
#include "panel/alarms/alarm_watch.h"
#include "panel/alarms/journal_port.h"
#include "panel/alarms/row_list.h"
#include "panel/widgets/page.h"

class QStackedWidget;

namespace dx4::panel {

class FilterSheet;
class EventSaveSheet;
class TextSheet;

/// What the page needs.
struct AlarmsPort {
    AlarmWatch *watch = nullptr; ///< outlives the page
    ReadEvents read; ///< null: no journal is kept
    SaveEvents save; ///< null as well
    std::function<journal::Time()> now;
    AlarmWords words;
    QVector<int> stations; ///< that the history is filtered by
    /// Where the snapshot of a fault is, or why there is none; in a line. Null: there are none.
    std::function<QString(const Alarm &)> snapshotText;
};

class AlarmsPage : public Page {
    Q_OBJECT

public:
    explicit AlarmsPage(AlarmsPort port, QWidget *parent = nullptr);

    void refresh() override;
    void setScale(double scale) override;

    /// Shows what is, or what was.
    void showHistory(bool isWanted);

private:
    QWidget *makeBar();
    FlatButton *addButton(const char *name, const QString &text);
    void acknowledgeChosen();
    void acknowledgeShown();
    void askWhereTo();
    void tellDetails();
    void showButtons();
    void showEmptyTexts();
    void keepChosen(int row);
    void take(const HistoryFilter &filter);
    RowList &list() const { return m_isHistory ? *m_historyList : *m_alarmList; }

    const AlarmsPort m_port;
    AlarmModel m_alarms;
    HistoryModel m_history;
    QLabel *m_head;
    QStackedWidget *m_lists;
    RowList *m_alarmList;
    RowList *m_historyList;
    QWidget *m_bar;
    FlatButton *m_now = nullptr;
    FlatButton *m_past = nullptr;
    FlatButton *m_acknowledge = nullptr;
    FlatButton *m_acknowledgeShown = nullptr;
    FlatButton *m_filter = nullptr;
    FlatButton *m_csv = nullptr;
    FlatButton *m_details = nullptr;
    FilterSheet *m_filterSheet;
    EventSaveSheet *m_saveSheet;
    TextSheet *m_textSheet;
    AlarmKey m_chosen; // of the row that is chosen among the alarms
    bool m_isHistory = false;
};

} // namespace dx4::panel
