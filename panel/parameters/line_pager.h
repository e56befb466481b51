// SPDX-License-Identifier: MIT
// Lines of text, as many at once as there is room for.
#pragma once

#include "panel/widgets/flat_button.h"

#include <QStringList>

namespace dx4::panel {

/// Shows lines page by page. A line that is too long goes on in the next one.
class LinePager : public QWidget {
    Q_OBJECT

public:
    explicit LinePager(QWidget *parent = nullptr);

    /// Goes back to the first page where the lines are others.
    void setLines(const QStringList &lines);
    const QStringList &lines() const { return m_lines; }

    void turn(int pages);

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int textWidth() const;
    int perPage() const;
    void arrange();

    QStringList m_lines;
    QStringList m_wrapped; // to the width
    FlatButton *m_up;
    FlatButton *m_down;
    int m_first = 0;
};

} // namespace dx4::panel
