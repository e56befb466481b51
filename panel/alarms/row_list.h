// SPDX-License-Identifier: MIT
// The rows of a model, as many at once as there is room for.
#pragma once

#include "panel/alarms/row_button.h"

class QAbstractItemModel;
class QLabel;

namespace dx4::panel {

/// Shows the rows page by page: what is scrolled by steps stands still under a finger. One row may
/// be chosen.
class RowList : public QWidget {
    Q_OBJECT

public:
    /// @param model  outlives the list
    explicit RowList(QAbstractItemModel &model, QWidget *parent = nullptr);

    void setScale(double scale);

    /// What is told where there is no row.
    void setEmptyText(const QString &text);

    enum class View { Moves, Stays };

    /// The row is marked; -1: none.
    ///
    /// @param view  whether it is brought into view
    void choose(int row, View view = View::Moves);
    int chosen() const { return m_chosen; }

    /// Moves by so many pages; a model that has more is asked for it.
    void turn(int pages);

    int firstShown() const { return m_first; }
    int shownRows() const;

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void chosenChanged(int row);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int rowHeight() const;
    int rowsOfPage() const;
    int sideWidth() const;
    void takeReset();
    void arrange();
    void arrangeSide();
    void fill(RowButton &button, int row);

    QAbstractItemModel &m_model;
    QVector<RowButton *> m_buttons;
    QLabel *m_empty;
    QLabel *m_place;
    FlatButton *m_up;
    FlatButton *m_down;
    double m_scale = 1.0;
    int m_first = 0; // row at the top
    int m_chosen = -1;
};

} // namespace dx4::panel
