// SPDX-License-Identifier: MIT
// One drive large.
#pragma once

#include "panel/model/panel_line.h"
#include "panel/widgets/dial.h"
#include "panel/widgets/hold_button.h"
#include "panel/widgets/value_label.h"

class QBoxLayout;

namespace dx4::panel {

/// Frequency, set and actual, other values by their names, state and fault, and the commands, whose
/// way it tells.
class DriveView : public QWidget {
    Q_OBJECT

public:
    static constexpr int frequencySize = 96; // px, at a scale of 1
    static constexpr int plainWidth = 536; // px, that it needs at a scale of 1
    static constexpr int mostCells = 6; // values beside the frequency

    explicit DriveView(std::function<host::Duration()> now, QWidget *parent = nullptr);

    void show(const DriveShown &drive);
    using QWidget::show;

    void setScale(double scale);

    /// Takes the commands away, for a drive that is only looked at.
    void setReadOnly();

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void startWanted();
    void reverseWanted();
    void stopWanted();
    void frequencyWanted();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Cell {
        QLabel *caption = nullptr;
        ValueLabel *value = nullptr;
    };

    QLabel *makeLabel(const char *name);
    QBoxLayout *makeHead();
    QBoxLayout *makeFrequency();
    QLayout *makeCells();
    QBoxLayout *makeCommands();
    QVector<FlatButton *> commands() const { return { m_start, m_reverse, m_stop, m_change }; }
    void sizeCommands();
    void fitCells();
    void showHead(const DriveShown &drive);
    void showFrequency(const DriveShown &drive);
    void showCells(const DriveShown &drive);

    const std::function<host::Duration()> m_now;
    double m_scale = 1.0;
    bool m_canReverse = false;
    QLabel *m_name = nullptr;
    QLabel *m_fault = nullptr;
    QLabel *m_state = nullptr;
    ValueLabel *m_frequency = nullptr;
    QLabel *m_unit = nullptr;
    QLabel *m_marks = nullptr;
    Dial *m_dial = nullptr;
    QVector<Cell> m_cells;
    QLabel *m_way = nullptr;
    HoldButton *m_start = nullptr;
    HoldButton *m_reverse = nullptr;
    HoldButton *m_stop = nullptr;
    FlatButton *m_change = nullptr;
};

} // namespace dx4::panel
