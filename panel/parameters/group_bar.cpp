// SPDX-License-Identifier: MIT
// The groups of the parameters.
#include "panel/parameters/group_bar.h"

#include "panel/parameters/parameter_table.h"
#include "panel/widgets/look.h"
#include "register_tables.h"

#include <QGridLayout>

namespace dx4::panel {
namespace {

constexpr int columns = 2;

} // namespace

GroupBar::GroupBar(QWidget *parent)
    : QWidget(parent)
{
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(targetGap);
    for (int group = ParameterTable::allGroups; group < parameterGroupCount; ++group) {
        const bool isAll = group == ParameterTable::allGroups;
        auto *button = new FlatButton(isAll ? tr("All") : QStringLiteral("F ") + groupText(group));
        button->setCheckable(true);
        button->setAutoExclusive(true);
        button->setChecked(isAll);
        const int place = static_cast<int>(m_buttons.size());
        grid->addWidget(button, place / columns, place % columns);
        connect(button, &FlatButton::clicked, this, [this, group] { Q_EMIT chosen(group); });
        m_buttons.append(button);
    }
    grid->setRowStretch(static_cast<int>(m_buttons.size()) / columns, 1);
}

void GroupBar::choose(int group)
{
    m_buttons.at(group - ParameterTable::allGroups)->setChecked(true);
}

void GroupBar::setButtonSize(int size)
{
    for (FlatButton *button : std::as_const(m_buttons))
        button->setFixedSize(size, size);
}

} // namespace dx4::panel
