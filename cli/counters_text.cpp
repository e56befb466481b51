// SPDX-License-Identifier: MIT
// The counters of a cycle, as text and as JSON.
#include "cli/counters_text.h"

namespace dx4::cli {

QString countersText(const host::Counters &counters)
{
    return QStringLiteral("%1 reads, %2 writes, %3 retries, %4 given up")
        .arg(counters.readsServed)
        .arg(counters.writesServed)
        .arg(counters.retries)
        .arg(counters.givenUp);
}

QJsonObject countersJson(const host::Counters &counters)
{
    return { { QStringLiteral("requests"), static_cast<qint64>(counters.requests) },
             { QStringLiteral("reads"), static_cast<qint64>(counters.readsServed) },
             { QStringLiteral("writes"), static_cast<qint64>(counters.writesServed) },
             { QStringLiteral("retries"), static_cast<qint64>(counters.retries) },
             { QStringLiteral("givenUp"), static_cast<qint64>(counters.givenUp) },
             { QStringLiteral("silences"), static_cast<qint64>(counters.silences) },
             { QStringLiteral("badReplies"), static_cast<qint64>(counters.badReplies) },
             { QStringLiteral("bytesSent"), static_cast<qint64>(counters.bytesSent) },
             { QStringLiteral("bytesReceived"), static_cast<qint64>(counters.bytesReceived) } };
}

} // namespace dx4::cli
