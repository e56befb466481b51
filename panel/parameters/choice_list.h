// SPDX-License-Identifier: MIT
// Things to choose from, as many at once as there is room for.
#pragma once

#include "panel/parameters/two_line_button.h"

#include <QVector>

namespace dx4::panel {

struct Choice {
    QString name;
    QString state; ///< below the name
};

/// Shows choices page by page.
class ChoiceList : public QWidget {
    Q_OBJECT

public:
    explicit ChoiceList(QWidget *parent = nullptr);

    void setChoices(const QVector<Choice> &choices);

    /// Moves by so many pages, as far as there are any.
    void turn(int pages);

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void chosen(int index);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int columns() const;
    int cellHeight() const;
    int perPage() const;
    void arrange();

    QVector<TwoLineButton *> m_buttons;
    FlatButton *m_up;
    FlatButton *m_down;
    int m_first = 0;
};

} // namespace dx4::panel
