// SPDX-License-Identifier: MIT
// The host's counters, as text and as JSON.
#include "cli/registers/counters_text.h"

#include "cli/console/output.h"

namespace dx4::cli {

QString countersText(const host::CounterSet &counters)
{
    const host::RequestCounts total = counters.total();
    return filled("%1, %2, %3, %4 given up", counted(counters.reads().good, "read", "reads"),
                  counted(counters.writes().good, "write", "writes"),
                  counted(total.retries, "retry", "retries"), total.giveUps);
}

Facts sumFacts(const host::CounterSet &counters)
{
    const host::RequestCounts total = counters.total();
    return { { "reads", static_cast<qint64>(counters.reads().good) },
             { "writes", static_cast<qint64>(counters.writes().good) },
             { "retries", static_cast<qint64>(total.retries) },
             { "givenUp", static_cast<qint64>(total.giveUps) },
             { "bytesSent", static_cast<qint64>(total.bytesSent) },
             { "bytesReceived", static_cast<qint64>(total.bytesReceived) } };
}

Facts countersFacts(const host::CounterSet &counters)
{
    const host::RequestCounts total = counters.total();
    const quint64 answered = total.good + total.timeouts;
    return sumFacts(counters)
        + Facts { { "requests", static_cast<qint64>(total.requests) },
                  { "silences", static_cast<qint64>(total.timeouts) },
                  { "badReplies", static_cast<qint64>(total.requests - answered) } };
}

QStringList failureTexts(const host::RequestCounts &counts)
{
    QStringList texts;
    const auto add = [&texts](quint64 count, const QString &name) {
        if (count > 0)
            texts.append(filled("%1 %2", count, name));
    };
    add(counts.timeouts, QStringLiteral("silence"));
    add(counts.truncated, QStringLiteral("truncated"));
    add(counts.badCrc, QStringLiteral("wrong CRC"));
    add(counts.foreign, QStringLiteral("other station"));
    add(counts.wrongReplies, QStringLiteral("wrong reply"));
    for (const auto &[code, count] : counts.exceptions)
        add(count, filled("exception %1", code));
    return texts.isEmpty() ? QStringList { QStringLiteral("none") } : texts;
}

QStringList answerTexts(const host::RequestCounts &counts)
{
    QStringList texts;
    for (std::size_t i = 0; i < counts.turnaround.size(); ++i) {
        if (counts.turnaround.at(i) == 0)
            continue;
        const bool isLast = i == host::turnaroundBounds.size();
        texts.append(filled("%1 %2 %3 ms", counts.turnaround.at(i),
                            isLast ? QStringLiteral("above") : QStringLiteral("within"),
                            isLast ? host::turnaroundBounds.back() : host::turnaroundBounds.at(i)));
    }
    return texts.isEmpty() ? QStringList { QStringLiteral("none") } : texts;
}

} // namespace dx4::cli
