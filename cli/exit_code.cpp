// SPDX-License-Identifier: MIT
// How the program ends, for the script that called it.
#include "cli/exit_code.h"

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
    const QByteArray line = (program + command + QStringLiteral(": ") + text).toUtf8();
    std::fprintf(stderr, "%s\n", line.constData());
}

} // namespace dx4::cli
