// SPDX-License-Identifier: MIT
// How the program ends, for the script that called it.
#include "cli/console/exit_code.h"

#include "cli/console/standard_streams.h"

namespace dx4::cli {
namespace {

QString &speaker()
{
    static QString name = QStringLiteral("dx4");
    return name;
}

} // namespace

std::nullopt_t refuse(Failure *failure, const QString &text, ExitCode code)
{
    if (failure)
        *failure = { code, text };
    return std::nullopt;
}

bool fail(Failure *failure, const QString &text, ExitCode code)
{
    refuse(failure, text, code);
    return false;
}

void speakFor(const QString &command)
{
    speaker() = filled("dx4 %1", command).trimmed();
}

int complain(const Failure &failure)
{
    note(failure.text);
    return failure.code;
}

void note(const QString &text)
{
    writeTalk(speaker() + QStringLiteral(": ") + text + QLatin1Char('\n'));
}

} // namespace dx4::cli
