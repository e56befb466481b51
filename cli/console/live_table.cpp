// SPDX-License-Identifier: MIT
// Lines drawn over themselves on a terminal.
#include "cli/console/live_table.h"

#include "cli/console/interrupt.h"
#include "cli/console/output.h"
#include "host/base/length.h"

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr int fewestRows = 5; // of a body, however small the window says it is

} // namespace

LiveTable::LiveTable()
{
    comeBack();
    onSuspend([this] { leave(); }, [this] { comeBack(); });
}

LiveTable::~LiveTable()
{
    onSuspend({}, {});
    leave();
}

int LiveTable::room(const Terminal &terminal, int footLines)
{
    return std::max(terminal.rows - 1 - footLines, fewestRows); // the cursor has a line too
}

void LiveTable::draw(const QStringList &body, const QStringList &foot)
{
    if (!outputIsTaken())
        return;
    const QStringList lines = body + foot;
    QString text;
    if (m_height > 0)
        text = filled("\x1b[%1A", m_height); // back up over the last drawing
    for (const QString &line : lines)
        text += line + QStringLiteral("\x1b[K\n");
    m_height = host::lengthOf(lines);
    writeText(text + QStringLiteral("\x1b[J"));
}

void LiveTable::leave()
{
    m_keys.leave();
    writeText(QStringLiteral("\x1b[?25h\x1b[?7h"));
}

/// Draws anew: others may have written below the last drawing.
void LiveTable::comeBack()
{
    m_height = 0;
    m_keys.begin();
    writeText(QStringLiteral("\x1b[?25l\x1b[?7l")); // no cursor, no wrap
}

} // namespace dx4::cli
