// SPDX-License-Identifier: MIT
// The cards of all drives, as many at once as there is room for.
#pragma once

#include "panel/pages/drive_card.h"

namespace dx4::panel {

/// Shows the cards page by page: what is scrolled by steps stands still under a finger.
class DriveList : public QWidget {
    Q_OBJECT

public:
    explicit DriveList(PanelLine &line, QWidget *parent = nullptr);

    /// Takes what the line knows now.
    void refresh();

    /// Takes a width that suits the page: more than one column where the drives are many and the
    /// page is wide, and smaller cards before there is more than one turn.
    ///
    /// @param page   room of list and large drive together
    /// @param scale  of the page
    void setRoom(QSize page, double scale);

    /// The card of this drive is marked, and brought into view.
    void choose(int index);

    /// Moves by so many pages, as far as there are any.
    void turn(int pages);

Q_SIGNALS:
    void chosen(int index);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QSize cardSize() const { return cardSize(m_scale); }
    static QSize cardSize(double scale);
    int rows(int height) const;
    void takeScale(QSize page, double scale);
    int cardsOfPage() const;
    void arrange();
    void arrangeTurns(bool isNeeded, int last);

    PanelLine &m_line;
    QVector<DriveCard *> m_cards;
    FlatButton *m_up;
    FlatButton *m_down;
    double m_scale = 1.0; // of the cards
    int m_columns = 1;
    int m_first = 0; // card at the top
    int m_chosen = 0;
};

} // namespace dx4::panel
