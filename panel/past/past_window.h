// SPDX-License-Identifier: MIT
// A window on the time around a fault, which reads as if live.
#pragma once

#include "panel/alarms/alarm_words.h"
#include "panel/alarms/row_list.h"
#include "panel/model/panel_line.h"
#include "panel/pages/drive_list.h"
#include "panel/pages/drive_view.h"
#include "panel/past/past_record.h"
#include "panel/past/text_rows.h"

#include <QWidget>

class QStackedWidget;

namespace dx4::panel {

/// Shows each moment as the panel would have shown it then, without commands: there is no line. The
/// head says on every page that it is the past, and of what.
class PastWindow : public QWidget {
    Q_OBJECT

public:
    explicit PastWindow(const PastRecord &record, QWidget *parent = nullptr);

    /// Shows a moment, as far as the record reaches.
    void showMoment(journal::Time at);
    journal::Time moment() const { return m_at; }

    /// "0.5 s before the fault".
    static QString distanceText(journal::Time fromFault);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *makeHead();
    QWidget *makeDrives();
    QWidget *makeSteps();
    QWidget *makeTabs();
    FlatButton *addButton(QWidget &row, const char *name, const QString &text);
    void openTab(int index);
    void refresh();
    void choose(int index);
    void setScale(double scale);
    QString headText() const;

    const PastRecord m_record;
    const AlarmWords m_words;
    std::shared_ptr<const host::LineSnapshot> m_snapshot;
    PanelLine m_line;
    TextRows m_frames;
    TextRows m_parameters;
    journal::Time m_at = 0;
    int m_chosen = 0; // drive
    QLabel *m_past = nullptr;
    QLabel *m_head = nullptr;
    QLabel *m_when = nullptr;
    QStackedWidget *m_pages = nullptr;
    DriveList *m_list = nullptr;
    DriveView *m_view = nullptr;
    QVector<RowList *> m_lists;
    QVector<FlatButton *> m_tabs;
    QVector<FlatButton *> m_buttons; // all of them
    FlatButton *m_atFault = nullptr;
};

} // namespace dx4::panel
