// SPDX-License-Identifier: MIT
// What standard output can show.
#include "cli/console/terminal.h"

#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

constexpr int usualRows = 24;

constexpr const char *styleCodes[] = { "1", "2", "1;32", "33", "1;31" }; // by Terminal::Style

} // namespace

Terminal Terminal::detect(bool trace)
{
    Terminal terminal;
    const bool isWrittenBetween = trace && isatty(STDERR_FILENO);
    terminal.live = isatty(STDOUT_FILENO) && qgetenv("TERM") != "dumb" && !isWrittenBetween;
    terminal.colour = terminal.live && qEnvironmentVariableIsEmpty("NO_COLOR");
    if (terminal.live)
        terminal.measure();
    return terminal;
}

void Terminal::measure()
{
    winsize size {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0)
        return;
    columns = size.ws_col > 0 ? size.ws_col : terminalColumns;
    rows = size.ws_row > 0 ? size.ws_row : usualRows;
}

QStringList Terminal::folded(const QString &text) const
{
    QStringList lines;
    QString line;
    const QStringList words = text.split(QLatin1Char(' '));
    for (const QString &word : words) {
        if (!line.isEmpty() && line.size() + 1 + word.size() > columns)
            lines << std::exchange(line, QString());
        line += line.isEmpty() ? word : QLatin1Char(' ') + word;
    }
    return lines << line;
}

QString Terminal::styled(const QString &text, Style style) const
{
    if (!colour)
        return text;
    return filled("\x1b[%1m%2\x1b[0m", styleCodes[static_cast<int>(style)], text);
}

} // namespace dx4::cli
