// SPDX-License-Identifier: MIT
// The groups of the parameters.
#pragma once

#include "panel/widgets/flat_button.h"

#include <QVector>

namespace dx4::panel {

/// All, and each group of its own; one is chosen.
class GroupBar : public QWidget {
    Q_OBJECT

public:
    explicit GroupBar(QWidget *parent = nullptr);

    /// @param group  ParameterTable::allGroups for all
    void choose(int group);

    /// @param size  of a button, px
    void setButtonSize(int size);

Q_SIGNALS:
    void chosen(int group);

private:
    QVector<FlatButton *> m_buttons; // all, then the groups
};

} // namespace dx4::panel
