// SPDX-License-Identifier: MIT
// One parameter: its values in full, and what was written to it.
#pragma once

#include "panel/parameters/line_pager.h"
#include "panel/parameters/parameter_table.h"
#include "panel/widgets/sheet.h"

class QLabel;

namespace dx4::panel {

class DetailSheet : public Sheet {
    Q_OBJECT

public:
    /// All outlive the sheet.
    DetailSheet(ParameterBook &book, ParameterTable &table, ParameterJournal &journal,
                QWidget *page);

    void ask(int address);

private:
    QString sideText(ParameterBook::Place place) const;
    void takeWrites(int station, int address, const QVector<ParameterWrite> &writes);

    ParameterBook &m_book;
    ParameterTable &m_table;
    ParameterJournal &m_journal;
    QLabel *m_text;
    QLabel *m_written;
    LinePager *m_lines;
    int m_address = 0;
};

/// "2026-03-01 12:02:00   100 to 120, confirmed", in local time.
QString writeText(const ParameterWrite &write);

} // namespace dx4::panel
