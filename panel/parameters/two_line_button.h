// SPDX-License-Identifier: MIT
// A button with a name and what is known of it.
#pragma once

#include "panel/widgets/flat_button.h"

namespace dx4::panel {

/// Shows a name that may be long, and below it a smaller line.
class TwoLineButton : public FlatButton {
    Q_OBJECT

public:
    explicit TwoLineButton(QWidget *parent = nullptr);

    /// @param state    below the name; empty: the name stands alone
    /// @param isFaded  what it stands for is not of now
    void setLines(const QString &name, const QString &state, bool isFaded = false);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_state;
    bool m_isFaded = false;
};

} // namespace dx4::panel
