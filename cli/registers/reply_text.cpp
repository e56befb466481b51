// SPDX-License-Identifier: MIT
// What became of a reply, for scripts and as an exit code.
#include "cli/registers/reply_text.h"

namespace dx4::cli {

QString causeName(host::ReplyCause cause)
{
    switch (cause) {
    case host::ReplyCause::Good:
        return QStringLiteral("good");
    case host::ReplyCause::Silence:
        return QStringLiteral("silence");
    case host::ReplyCause::Truncated:
        return QStringLiteral("truncated");
    case host::ReplyCause::BadCrc:
        return QStringLiteral("crc");
    case host::ReplyCause::ForeignStation:
        return QStringLiteral("station");
    case host::ReplyCause::WrongFunction:
        return QStringLiteral("function");
    case host::ReplyCause::WrongByteCount:
        return QStringLiteral("length");
    case host::ReplyCause::WrongEcho:
        return QStringLiteral("echo");
    case host::ReplyCause::Exception:
        return QStringLiteral("exception");
    }
    return QString();
}

ExitCode causeCode(const host::ReplyVerdict &verdict)
{
    switch (verdict.cause) {
    case host::ReplyCause::Good:
        return ExitDone;
    case host::ReplyCause::Silence:
        return ExitNoReply;
    case host::ReplyCause::Truncated:
    case host::ReplyCause::BadCrc:
        return ExitDamagedReply;
    case host::ReplyCause::ForeignStation:
    case host::ReplyCause::WrongFunction:
    case host::ReplyCause::WrongByteCount:
    case host::ReplyCause::WrongEcho:
        return ExitForeignReply;
    case host::ReplyCause::Exception:
        return ExitRefused;
    }
    return ExitFailed;
}

} // namespace dx4::cli
