// SPDX-License-Identifier: MIT
// The table of the parameters, for fingers.
#pragma once

#include "panel/parameters/parameter_table.h"

#include <QTableView>

namespace dx4::panel {

/// Rows of at least 48 px. They are scrolled row by row: by a finger that drags, by keys, by
/// step(). A tap on a tick changes it, a tap elsewhere opens its row.
class ParameterView : public QTableView {
    Q_OBJECT

public:
    explicit ParameterView(ParameterTable &table, QWidget *parent = nullptr);

    void setScale(double scale);

    /// Hides what one side alone does not need.
    void setSides(bool hasFirst, bool hasSecond);

    /// What is said where no row is.
    void setEmptyText(const QString &text);

    /// Moves by so many pages.
    void step(int pages);
    bool canStep(int pages) const;

Q_SIGNALS:
    void opened(int address);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void tap(const QModelIndex &index);
    void toggle(int row);
    void arrange();
    int rowsShown() const;

    ParameterTable &m_table;
    QString m_emptyText;
    double m_scale = 1.0;
    bool m_hasSides = false; // the two below are known
    bool m_hasFirst = false;
    bool m_hasSecond = false;
    bool m_isPressed = false;
    bool m_isDragged = false;
    QPoint m_pressedAt;
    int m_firstAtPress = 0; // row at the top
};

} // namespace dx4::panel
