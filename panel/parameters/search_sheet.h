// SPDX-License-Identifier: MIT
// What asks for a number or a name to look for.
#pragma once

#include "panel/parameters/parameter_table.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/sheet.h"

class QGridLayout;
class QLabel;
class QLineEdit;

namespace dx4::panel {

/// Numbers are typed on keys of its own, "8.2", "c.13"; names with the keyboard of the system.
class SearchSheet : public Sheet {
    Q_OBJECT

public:
    /// @param table  outlives the sheet
    SearchSheet(ParameterTable &table, QWidget *page);

    void ask();

Q_SIGNALS:
    void entered(const QString &text);

private:
    QWidget *makeKeys();
    QWidget *makeSide();
    void addKey(QGridLayout &keys, int row, int column, const QString &text);
    void look(const QString &text);

    ParameterTable &m_table;
    QLineEdit *m_text = nullptr;
    QLabel *m_found = nullptr;
};

} // namespace dx4::panel
