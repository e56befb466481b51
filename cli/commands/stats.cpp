// SPDX-License-Identifier: MIT
// dx4 stats: how well the line works.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/polling.h"
#include "cli/line/watch_plan.h"
#include "cli/registers/counters_text.h"
#include "cli/registers/register_names.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words;
    int requests = 100;
    int reconnect = -1; ///< s
    bool names = false;
};

QString percentText(double share)
{
    return filled("%1 %", qRound(share * 100));
}

/// A line per block, below it the names of its registers.
QStringList countLines(const host::Plan &plan, const host::CounterSet &counters,
                       const RegisterNames &names)
{
    const QStringList heads { QStringLiteral("Sent"), QStringLiteral("Good"),
                              QStringLiteral("Retries"), QStringLiteral("Given up") };
    const auto countsOf = [&counters](const KEY_ADDRESS &block) -> QStringList {
        const host::RequestCounts counts =
            counters.block({ block.station, block.regType, block.address, block.count, false });
        return { QString::number(counts.requests), QString::number(counts.good),
                 QString::number(counts.retries), QString::number(counts.giveUps) };
    };
    return blockLines(plan, heads, countsOf, names);
}

QStringList sumLines(const host::CounterSet &counters, double load)
{
    const host::RequestCounts total = counters.total();
    const auto lineOf = [](const char *name, const QString &text) {
        return QString::fromLatin1(name).leftJustified(10) + text;
    };
    QStringList lines { lineOf("requests",
                               filled("%1 sent, %2 answered, %3 passed over", total.requests,
                                      total.good, total.notAsked)) };
    lines += indented(QStringLiteral("failures"), failureTexts(total));
    lines << lineOf("driver", countersText(counters))
          << lineOf("bytes", filled("%1 sent, %2 received", total.bytesSent, total.bytesReceived));
    lines += indented(QStringLiteral("answers"), answerTexts(total));
    lines << lineOf("line",
                    filled("held %1 of the time, broke %2", percentText(load),
                           counted(counters.lineDowns(), "time", "times")));
    return lines;
}

/// Polls until as many requests were sent, or passed over, as the options say.
PollEnd measure(Session &session, const Options &options)
{
    PollSettings settings;
    settings.enough = [&] {
        const quint64 sent = session.runtime().counters().attempts();
        return sent >= static_cast<quint64>(options.requests);
    };
    settings.patience = patienceOf(options.reconnect, true);
    return poll(session, settings);
}

/// What was measured, as it is printed.
QStringList resultLines(Session &session, const Options &options, const host::Plan &plan,
                        host::Duration start)
{
    const host::Runtime &runtime = session.runtime();
    if (options.line.json)
        return { jsonText(runtime.countersJson()) };
    const RegisterNames names(options.line.plant, session.runtime().link().api(), options.names);
    return countLines(plan, runtime.counters(), names)
        << QString()
        << sumLines(runtime.counters(), runtime.counters().lineLoad(start, session.line().now()));
}

/// The status word, which every drive has, where nothing else is asked for.
QStringList wordsOf(const Options &options)
{
    QStringList words = wordsOrConfigured(options.words, options.line);
    if (!words.isEmpty())
        return words;
    if (options.line.station > 0)
        return { QStringLiteral("SW") };
    QStringList statusWords;
    for (const host::StationConfig &station : options.line.plant.stations)
        statusWords.append(filled("%1:SW", station.address));
    return statusWords;
}

int runStats(const Options &options)
{
    const QStringList words = wordsOf(options);
    Failure failure;
    const auto plan = makePlan(words, options.line, &failure);
    if (!plan)
        return complain(failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(failure);
    session->runtime().setPlan(*plan);
    const host::Duration start = session->line().now();
    const PollEnd end = measure(*session, options);
    const QStringList result = resultLines(*session, options, *plan, start); // without the stop
    const bool stopped = end != PollEnd::Asked || session->stopSafely();
    printLines(result);
    return codeOfEnd(*session, end, true, "answered", stopped);
}

} // namespace

void describeStats(Command &command)
{
    Options &options = command.action(runStats);
    command.words("address", options.words, "registers to poll; else the file's, or SW",
                  readableRegister, false);
    command.number("--requests", options.requests, "to send, repeated ones included", 1, 1000000);
    command.flag("--names", options.names, "with names of the simulated inverter");
    addPollOptions(command, options.reconnect);
    addLineOptions(command, options.line);
    command.example("dx4 stats --port /dev/ttyUSB0 --requests 20 D 0-9",
                    "failures by kind, and how soon the station answers");
}

} // namespace dx4::cli
