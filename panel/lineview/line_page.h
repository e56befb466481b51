// SPDX-License-Identifier: MIT
// The page of the line: what is wrong with it, counted, timed and frame by frame.
#pragma once

#include "panel/lineview/answer_chart.h"
#include "panel/lineview/line_table.h"
#include "panel/lineview/line_view.h"
#include "panel/lineview/record_sheet.h"
#include "panel/lineview/station_sheet.h"
#include "panel/widgets/page.h"

class QBoxLayout;
class QLabel;
class QStackedWidget;

namespace dx4::panel {

class LinePage : public Page {
    Q_OBJECT

public:
    /// What is shown below the sentence.
    enum View { Counters, Answers, Frames };

    /// @param view    outlives the page
    /// @param places  where recordings may go
    /// @param now     time of day, for the names of recordings
    LinePage(LineView &view, std::function<QVector<Place>()> places, std::function<QDateTime()> now,
             QWidget *parent = nullptr);

    void refresh() override;
    void setScale(double scale) override;
    void open(View view);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QLabel *makeLabel(const char *name);
    QWidget *makeAnswers();
    QWidget *makeFrames();
    QBoxLayout *makeButtons();
    FlatButton *makeButton(const QString &text, const char *name, bool isCheckable);
    void showButtons();
    void showTexts();
    void showAnswers();
    void turn(int pages);
    void setPaused(bool isPaused);
    void recordOrEnd();
    void askWhereItExists();

    LineView &m_view;
    const std::function<QDateTime()> m_now;
    QLabel *m_verdict;
    QLabel *m_load;
    QLabel *m_record;
    QVector<FlatButton *> m_tabs;
    FlatButton *m_recent = nullptr;
    FlatButton *m_blocks = nullptr;
    FlatButton *m_station = nullptr;
    FlatButton *m_onlyBad = nullptr;
    FlatButton *m_pause = nullptr;
    FlatButton *m_up = nullptr;
    FlatButton *m_down = nullptr;
    FlatButton *m_recordButton = nullptr;
    LineTable *m_counts;
    LineTable *m_frames = nullptr;
    QLabel *m_noFrames = nullptr;
    AnswerChart *m_chart = nullptr;
    QLabel *m_summary = nullptr;
    QStackedWidget *m_body;
    StationSheet *m_stationSheet = nullptr;
    RecordSheet *m_recordSheet = nullptr;
    bool m_isAskedToReplace = false;
};

} // namespace dx4::panel
