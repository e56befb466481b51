// SPDX-License-Identifier: MIT
// The host's counters, as text and as JSON.
#include "cli/registers/counters_text.h"

#include "cli/console/output.h"

namespace dx4::cli {

QString countersText(const host::CounterSet &counters)
{
    const host::RequestCounts total = counters.total();
    return QStringLiteral("%1, %2, %3, %4 given up")
        .arg(counted(counters.reads().good, "read", "reads"),
             counted(counters.writes().good, "write", "writes"),
             counted(total.retries, "retry", "retries"))
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

QStringList failureTexts(const host::RequestCounts &counts)
{
    QStringList texts;
    const auto add = [&texts](quint64 count, const QString &name) {
        if (count > 0)
            texts.append(QStringLiteral("%1 %2").arg(count).arg(name));
    };
    add(counts.timeouts, QStringLiteral("silence"));
    add(counts.truncated, QStringLiteral("truncated"));
    add(counts.badCrc, QStringLiteral("wrong CRC"));
    add(counts.foreign, QStringLiteral("other station"));
    add(counts.wrongReplies, QStringLiteral("wrong reply"));
    for (const auto &[code, count] : counts.exceptions)
        add(count, QStringLiteral("exception %1").arg(code));
    return texts.isEmpty() ? QStringList { QStringLiteral("none") } : texts;
}

QStringList answerTexts(const host::RequestCounts &counts)
{
    QStringList texts;
    for (std::size_t i = 0; i < counts.turnaround.size(); ++i) {
        if (counts.turnaround.at(i) == 0)
            continue;
        const bool isLast = i == host::turnaroundBounds.size();
        texts.append(
            QStringLiteral("%1 %2 %3 ms")
                .arg(counts.turnaround.at(i))
                .arg(isLast ? QStringLiteral("above") : QStringLiteral("within"))
                .arg(isLast ? host::turnaroundBounds.back() : host::turnaroundBounds.at(i)));
    }
    return texts.isEmpty() ? QStringList { QStringLiteral("none") } : texts;
}

} // namespace dx4::cli
