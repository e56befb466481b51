// SPDX-License-Identifier: MIT
// How the program ends, for the script that called it.
#include "cli/console/exit_code.h"

#include "cli/console/standard_streams.h"

namespace dx4::cli {

int complain(const QString &command, const Failure &failure)
{
    note(command, failure.text);
    return failure.code;
}

void note(const QString &command, const QString &text)
{
    const QString program = command.isEmpty() ? QStringLiteral("dx4") : QStringLiteral("dx4 ");
    writeTalk(program + command + QStringLiteral(": ") + text + QLatin1Char('\n'));
}

} // namespace dx4::cli
