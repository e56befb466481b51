// SPDX-License-Identifier: MIT
// How the program ends, for the script that called it.
#include "cli/exit_code.h"

#include <QTextStream>

#include <cstdio>

namespace dx4::cli {

int complain(const QString &command, const Failure &failure)
{
    note(command, failure.text);
    return failure.code;
}

void note(const QString &command, const QString &text)
{
    const QString program = command.isEmpty() ? QStringLiteral("dx4") : QStringLiteral("dx4 ");
    QTextStream(stderr) << program << command << ": " << text << '\n';
}

} // namespace dx4::cli
