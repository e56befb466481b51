// SPDX-License-Identifier: MIT
// Verdicts on replies in words.
#include "host/frames/verdict_text.h"

#include "wire/exception_name.h"

namespace dx4::host {

QString exceptionName(int code)
{
    return QString::fromLatin1(dx4::exceptionName(code));
}

QString verdictText(const ReplyVerdict &verdict)
{
    switch (verdict.cause) {
    case ReplyCause::Good:
        return QStringLiteral("it answers the request");
    case ReplyCause::Silence:
        return QStringLiteral("no reply");
    case ReplyCause::Truncated:
        return QStringLiteral("the reply is cut short");
    case ReplyCause::BadCrc:
        return QStringLiteral("the reply has a wrong CRC");
    case ReplyCause::ForeignStation:
        return QStringLiteral("another station replied");
    case ReplyCause::WrongFunction:
        return QStringLiteral("the reply is to another function");
    case ReplyCause::WrongByteCount:
        return QStringLiteral("the reply has another number of registers");
    case ReplyCause::WrongEcho:
        return QStringLiteral("the echo is of another write");
    case ReplyCause::Exception:
        return QStringLiteral("refused with exception %1, %2")
            .arg(verdict.exceptionCode)
            .arg(exceptionName(verdict.exceptionCode));
    }
    return QString();
}

QString notAskedText()
{
    return QStringLiteral("not asked, as the station is silent");
}

} // namespace dx4::host
