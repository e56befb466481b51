// SPDX-License-Identifier: MIT
// dx4 stats: how well the line works.
#include "cli/commands/stats.h"

#include "cli/counters_text.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/reply_text.h"
#include "cli/session.h"
#include "cli/watch_plan.h"
#include "host/length.h"

#include <QMap>

#include <algorithm>

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words;
    int requests = 100;
};

/// What the exchanges were like.
struct Record {
    QVector<host::Duration> turnarounds; ///< of good replies, ascending at the end
    QMap<QString, int> failures; ///< by cause
    host::ReplyVerdict lastFailure;
    bool lineBroke = false;
};

double inMilliseconds(host::Duration span)
{
    return static_cast<double>(span.count()) / 1000.0;
}

/// The value that `percent` of all stay below or at.
double percentile(const QVector<host::Duration> &ascending, int percent)
{
    if (ascending.isEmpty())
        return 0;
    const int last = host::lengthOf(ascending) - 1;
    return inMilliseconds(ascending.at(last * percent / 100));
}

Record measure(Session &session, int requests)
{
    Record record;
    for (int done = 0; done < requests && !shouldEnd(); ++done) {
        const host::Cycle::Step step = session.step();
        record.lineBroke = step == host::Cycle::Step::LineDown;
        if (record.lineBroke)
            break;
        if (session.verdict().cause == host::ReplyCause::Good) {
            record.turnarounds.append(session.cycle().reply().turnaround);
            continue;
        }
        ++record.failures[causeName(session.verdict().cause)];
        record.lastFailure = session.verdict();
    }
    std::sort(record.turnarounds.begin(), record.turnarounds.end());
    return record;
}

QJsonObject recordJson(const Record &record)
{
    QJsonObject failures;
    for (auto it = record.failures.cbegin(); it != record.failures.cend(); ++it)
        failures.insert(it.key(), it.value());
    return { { QStringLiteral("good"), host::lengthOf(record.turnarounds) },
             { QStringLiteral("failures"), failures },
             { QStringLiteral("fastestMs"), percentile(record.turnarounds, 0) },
             { QStringLiteral("medianMs"), percentile(record.turnarounds, 50) },
             { QStringLiteral("p99Ms"), percentile(record.turnarounds, 99) },
             { QStringLiteral("slowestMs"), percentile(record.turnarounds, 100) } };
}

void printRecord(const Record &record, const host::CounterSet &counters)
{
    printLine(QStringLiteral("requests  %1 sent, %2 answered")
                  .arg(counters.total().requests)
                  .arg(record.turnarounds.size()));
    QStringList failures;
    for (auto it = record.failures.cbegin(); it != record.failures.cend(); ++it)
        failures.append(QStringLiteral("%1 %2").arg(it.value()).arg(it.key()));
    printLine(QStringLiteral("failures  %1")
                  .arg(failures.isEmpty() ? QStringLiteral("none")
                                          : failures.join(QStringLiteral(", "))));
    printLine(QStringLiteral("driver    %1").arg(countersText(counters)));
    printLine(QStringLiteral("bytes     %1 sent, %2 received")
                  .arg(counters.total().bytesSent)
                  .arg(counters.total().bytesReceived));
    printLine(QStringLiteral("exchange  fastest %1 ms, median %2 ms, 99 % %3 ms, slowest %4 ms")
                  .arg(percentile(record.turnarounds, 0), 0, 'f', 1)
                  .arg(percentile(record.turnarounds, 50), 0, 'f', 1)
                  .arg(percentile(record.turnarounds, 99), 0, 'f', 1)
                  .arg(percentile(record.turnarounds, 100), 0, 'f', 1));
}

int runStats(const Options &options)
{
    const QString name = QStringLiteral("stats");
    const QStringList words = options.words.isEmpty() && options.line.registers.isEmpty()
        ? QStringList { QStringLiteral("SW") }
        : wordsOrConfigured(options.words, options.line);
    Failure failure;
    const auto plan = makePlan(words, options.line, &failure);
    if (!plan)
        return complain(name, failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(name, failure);
    session->link().poll(plan->addresses);
    const Record record = measure(*session, options.requests);
    const host::CounterSet &counters = session->cycle().counters();
    if (options.line.json) {
        QJsonObject object = recordJson(record);
        object.insert(QStringLiteral("counters"), countersJson(counters));
        printJson(object);
    } else {
        printRecord(record, counters);
    }
    if (record.lineBroke)
        return complain(name, { ExitLine, QStringLiteral("%1 broke").arg(options.line.port) });
    return record.turnarounds.isEmpty() ? causeCode(record.lastFailure) : ExitDone;
}

} // namespace

void addStats(CommandLine &line)
{
    Command command = line.add("stats", "poll and count how well the line works");
    const auto options = std::make_shared<Options>();
    command.words("address", options->words, "registers to poll, SW where none is named", false);
    command.number("--requests", options->requests, "to send, repeated ones included", 1, 1000000);
    addLineOptions(command, options->line, QStringLiteral("stats"));
    command.example(QStringLiteral("dx4 stats --port /dev/ttyUSB0 --requests 20 D 0-9"),
                    QStringLiteral("failures by kind, and how long an exchange takes"));
    command.action([options] { return runStats(*options); });
}

} // namespace dx4::cli
