// SPDX-License-Identifier: MIT
// A quantity on half a circle, with what it is set to.
#pragma once

#include "panel/model/shown.h"

#include <QWidget>

namespace dx4::panel {

struct Look;

/// The actual value fills the arc from the left, a mark across it is the set one, which also stands
/// in the middle as a number. What is old is grey, what is gone is not drawn.
class Dial : public QWidget {
    Q_OBJECT

public:
    explicit Dial(QWidget *parent = nullptr);

    /// @param actual  number of the same unit as `set`
    void show(const Shown &actual, const Shown &set);
    using QWidget::show;

    /// Size of the texts, 1 or more.
    void setScale(double scale);

    QSize minimumSizeHint() const override;

    /// What the right end of the arc stands for: the first of a few round numbers, 60 among them,
    /// that holds both values.
    double highest() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRectF circle() const;
    double angleOf(double value) const;
    void drawArc(QPainter &painter, const Look &look) const;
    void drawMark(QPainter &painter, const Look &look) const;
    void drawTexts(QPainter &painter, const Look &look) const;

    Shown m_actual;
    Shown m_set;
    double m_scale = 1.0;
};

} // namespace dx4::panel
