// SPDX-License-Identifier: MIT
// The button that stops every drive.
#pragma once

#include "panel/widgets/flat_button.h"

namespace dx4::panel {

/// Acts as soon as it is touched, pressed or keyed, and asks nothing. It is never disabled: a stop
/// too many does no harm.
class StopButton : public FlatButton {
    Q_OBJECT

public:
    static constexpr int leastWidth = 160; // px
    static constexpr int leastHeight = 96; // px

    explicit StopButton(QWidget *parent = nullptr);

    QSize sizeHint() const override { return { leastWidth, leastHeight }; }
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void stopWanted();

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

/// Whether a key presses a button: space, return or enter, and not by holding it.
bool isPressKey(const QKeyEvent &event);

} // namespace dx4::panel
