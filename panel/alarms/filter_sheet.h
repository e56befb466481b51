// SPDX-License-Identifier: MIT
// A sheet that asks which events of the history are wanted.
#pragma once

#include "panel/alarms/history_model.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/sheet.h"

class QBoxLayout;
class QLabel;
class QLineEdit;

namespace dx4::panel {

/// By kind, time, drive and text. Nothing is taken over before it is asked for.
class FilterSheet : public Sheet {
    Q_OBJECT

public:
    FilterSheet(const AlarmWords &words, QVector<int> stations, QWidget *page);

    /// Opens it with what is wanted now.
    void ask(const HistoryFilter &filter);

    /// In a line; empty for all.
    static QString textOf(const HistoryFilter &filter, const AlarmWords &words);

Q_SIGNALS:
    void entered(const dx4::panel::HistoryFilter &filter);

private:
    QBoxLayout *makeKinds();
    QBoxLayout *makeSpans();
    QBoxLayout *makeDrives();
    QBoxLayout *makeEnd();
    FlatButton *addToggle(QBoxLayout &row, const QString &text);
    void turnDrive(int steps);
    void show(const HistoryFilter &filter);
    using Sheet::show;
    HistoryFilter filter() const;

    const AlarmWords m_words;
    const QVector<int> m_stations; // 0 first: all
    QVector<FlatButton *> m_kinds;
    QVector<FlatButton *> m_spans;
    QLabel *m_drive = nullptr;
    QLineEdit *m_text = nullptr;
    int m_place = 0; // in m_stations
};

} // namespace dx4::panel
