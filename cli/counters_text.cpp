// SPDX-License-Identifier: MIT
// The counters of a cycle, as text and as JSON.
#include "cli/counters_text.h"

namespace dx4::cli {

QString countersText(const host::CounterSet &counters)
{
    const host::RequestCounts total = counters.total();
    return QStringLiteral("%1 reads, %2 writes, %3 retries, %4 given up")
        .arg(counters.reads().good)
        .arg(counters.writes().good)
        .arg(total.retries)
        .arg(total.giveUps);
}

QJsonObject countersJson(const host::CounterSet &counters)
{
    const host::RequestCounts total = counters.total();
    const quint64 answered = total.good + total.timeouts;
    return { { QStringLiteral("requests"), static_cast<qint64>(total.requests) },
             { QStringLiteral("reads"), static_cast<qint64>(counters.reads().good) },
             { QStringLiteral("writes"), static_cast<qint64>(counters.writes().good) },
             { QStringLiteral("retries"), static_cast<qint64>(total.retries) },
             { QStringLiteral("givenUp"), static_cast<qint64>(total.giveUps) },
             { QStringLiteral("silences"), static_cast<qint64>(total.timeouts) },
             { QStringLiteral("badReplies"), static_cast<qint64>(total.requests - answered) },
             { QStringLiteral("bytesSent"), static_cast<qint64>(total.bytesSent) },
             { QStringLiteral("bytesReceived"), static_cast<qint64>(total.bytesReceived) } };
}

} // namespace dx4::cli
