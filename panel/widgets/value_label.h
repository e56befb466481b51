// SPDX-License-Identifier: MIT
// A value with its age, in the colours of how far it can be trusted.
#pragma once

#include "panel/model/shown.h"

#include <QLabel>

namespace dx4::panel {

/// Grey with its age when the value is old, dashes when it is gone. It is drawn anew only when what
/// it says has changed.
class ValueLabel : public QLabel {
    Q_OBJECT

public:
    enum class Age { Inside, Elsewhere };

    /// @param size  of the text, px
    /// @param age   whether the label itself says how old the value is
    explicit ValueLabel(int size, Age age = Age::Inside, QWidget *parent = nullptr);

    void setTextSize(int size);

    /// @param name  what the value is, for screen readers
    void show(const QString &name, const Shown &shown);
    using QLabel::show;

private:
    const Age m_age;
};

/// Text in a colour, set only where it is another one.
void setTextColour(QWidget &widget, const QColor &colour);

/// A font of this size, px.
QFont sized(const QFont &font, int size, bool isBold = false);

} // namespace dx4::panel
