// SPDX-License-Identifier: MIT
// Lines drawn over themselves on a terminal.
#include "cli/live_table.h"

#include "cli/output.h"
#include "host/length.h"

#include <algorithm>

#include <sys/ioctl.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

constexpr int usualRows = 24;
constexpr int fewestRows = 5; // of a body, however small the window says it is

int terminalRows()
{
    winsize size {};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0;
    return known ? size.ws_row : usualRows;
}

/// The body, cut so that body, foot and the cursor's line fit the window.
QStringList fitting(const QStringList &body, int footLines)
{
    const int room = std::max(terminalRows() - 1 - footLines, fewestRows);
    if (host::lengthOf(body) <= room)
        return body;
    const int hidden = host::lengthOf(body) - room + 1;
    QStringList cut = body.mid(0, room - 1);
    cut.append(QStringLiteral("... and %1 more; a higher window shows them").arg(hidden));
    return cut;
}

} // namespace

LiveTable::LiveTable()
{
    writeText(QStringLiteral("\x1b[?25l\x1b[?7l")); // no cursor, no wrap
}

LiveTable::~LiveTable()
{
    writeText(QStringLiteral("\x1b[?25h\x1b[?7h"));
}

void LiveTable::draw(const QStringList &body, const QStringList &foot)
{
    const QStringList lines = fitting(body, host::lengthOf(foot)) + foot;
    QString text;
    if (m_height > 0)
        text = QStringLiteral("\x1b[%1A").arg(m_height); // back up over the last drawing
    for (const QString &line : lines)
        text += line + QStringLiteral("\x1b[K\n");
    m_height = host::lengthOf(lines);
    writeText(text + QStringLiteral("\x1b[J"));
}

} // namespace dx4::cli
