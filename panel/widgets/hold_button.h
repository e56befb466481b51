// SPDX-License-Identifier: MIT
// A button that acts when it was held, for what moves a machine.
#pragma once

#include "host/line/line_settings.h"
#include "panel/widgets/flat_button.h"

#include <QTimer>

#include <functional>

namespace dx4::panel {

/// Acts once it was held for 0.8 s, by finger, mouse or key. Let go of before, nothing happens; nor
/// when the finger leaves it, or it loses the focus.
///
/// It acts while it is held and never on a release. A window that hung in between did not see that
/// the finger was gone: of the time between two looks only a little counts.
class HoldButton : public FlatButton {
    Q_OBJECT

public:
    static constexpr host::Duration holdTime = std::chrono::milliseconds(800);
    static constexpr host::Duration mostOfOneLook = std::chrono::milliseconds(200);

    /// @param now  the steady clock
    HoldButton(const QString &text, std::function<host::Duration()> now, QWidget *parent = nullptr);

    /// Takes a look at the clock; a timer does it while the button is held.
    void look();

    /// What was held of the time that is needed, 0 to 1.
    double progress() const;

Q_SIGNALS:
    void held();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void begin();
    void letGo();

    const std::function<host::Duration()> m_now;
    QTimer m_timer;
    bool m_isHeld = false;
    host::Duration m_lastLook { 0 };
    host::Duration m_heldFor { 0 };
};

} // namespace dx4::panel
