// SPDX-License-Identifier: MIT
// One row of a list, for fingers.
#pragma once

#include "panel/alarms/list_rows.h"
#include "panel/widgets/flat_button.h"

namespace dx4::panel {

struct Look;

/// What a row says.
struct RowText {
    RowMark mark = RowMark::None;
    QString heading;
    QString detail;
    QString time;
    QString full; ///< for screen readers
};

bool operator==(const RowText &a, const RowText &b);

/// Painted as a whole and only when what it says has changed.
class RowButton : public FlatButton {
    Q_OBJECT

public:
    static constexpr int plainHeight = 48; // px, at a scale of 1

    explicit RowButton(QWidget *parent = nullptr);

    void show(const RowText &row);
    using FlatButton::show;

    /// @param scale  of its texts, 1 or more
    void setScale(double scale);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    RowText m_row;
    double m_scale = 1.0;
};

/// Draws the shape of a mark into a square.
///
/// @param colour  of the shape
/// @param ground  that it stands on
void drawMark(QPainter &painter, RowMark mark, const QRectF &place, const QColor &colour,
              const QColor &ground);

} // namespace dx4::panel
