// SPDX-License-Identifier: MIT
// A button for fingers, drawn flat.
#pragma once

#include <QAbstractButton>

namespace dx4::panel {

struct Look;

/// A plain button; a checkable one that is checked stands on the accent colour. Its focus shows as
/// a frame.
class FlatButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit FlatButton(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

    /// Ground and frame.
    ///
    /// @param part  of the width from the left that stands on the accent colour, 0 to 1
    void drawGround(QPainter &painter, const QColor &ground, double part = 0.0) const;
    void drawText(QPainter &painter, const QColor &colour) const;
};

} // namespace dx4::panel
