// SPDX-License-Identifier: MIT
// dx4 watch: polls registers and shows them.
#include "cli/commands/watch.h"

#include "cli/commands/watch_view.h"
#include "cli/interrupt.h"
#include "cli/register_names.h"
#include "cli/reply_text.h"
#include "cli/session.h"
#include "cli/watch_plan.h"
#include "host/length.h"

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr int staleRounds = 5; // rounds without an answer before a value counts as stale
constexpr host::Duration shortestStale = std::chrono::seconds(2);

struct Options {
    LineOptions line;
    QStringList words;
    int rounds = 0; ///< 0: until Ctrl-C
    bool csv = false;
    bool names = false;
};

WatchList watched(const QVector<Target> &targets, bool names)
{
    QVector<WatchedValue> values;
    for (const Target &target : targets) {
        for (int i = 0; i < target.count; ++i) {
            const int address = target.address + i;
            values.append(names ? namedValue(target.station, target.regType, address)
                                : plainValue(target.station, target.regType, address));
        }
    }
    return WatchList(values);
}

WatchView::Form formOf(const Options &options)
{
    if (options.line.json)
        return WatchView::Form::Json;
    return options.csv ? WatchView::Form::Csv : WatchView::Form::Text;
}

/// Polls until it has had enough; gives whether the line held.
bool follow(Session &session, WatchList &list, WatchView &view, qint64 requests)
{
    const host::Duration start = session.line().now();
    qint64 settled = 0;
    bool lineHolds = true;
    while (lineHolds && !shouldEnd() && (requests == 0 || settled < requests)) {
        const host::Cycle::Step step = session.step();
        const host::Duration now = session.line().now();
        lineHolds = step != host::Cycle::Step::LineDown;
        const bool over = step == host::Cycle::Step::Served || step == host::Cycle::Step::GivenUp;
        settled += over ? 1 : 0;
        list.follow(session.link(), session.cycle(), step, now);
        view.values(list, session.cycle().counters(), now, now - start);
    }
    const host::Duration now = session.line().now();
    view.end(list, session.cycle().counters(), now, now - start);
    return lineHolds;
}

int outcome(const Session &session, const Options &options, bool lineHeld)
{
    const QString name = QStringLiteral("watch");
    if (!lineHeld)
        return complain(name, { ExitLine, QStringLiteral("%1 broke").arg(options.line.port) });
    if (session.cycle().counters().reads().good > 0 || shouldEnd())
        return ExitDone;
    return complain(name,
                    { causeCode(session.verdict()),
                      QStringLiteral("nothing was read: %1").arg(causeText(session.verdict())) });
}

int runWatch(const Options &options)
{
    const QString name = QStringLiteral("watch");
    Failure failure;
    const auto plan =
        makePlan(wordsOrConfigured(options.words, options.line), options.line, &failure);
    if (!plan)
        return complain(name, failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(name, failure);
    const auto targets =
        parseTargets(wordsOrConfigured(options.words, options.line), options.line.station,
                     ReadAccess, session->link().api(), &failure);
    if (!targets)
        return complain(name, failure);
    WatchList list = watched(*targets, options.names);
    const host::LineSettings settings = lineSettings(options.line);
    const host::Duration stale = std::max(
        staleRounds * host::cycleTime(*plan, settings, settings.responseTimeout), shortestStale);
    const qint64 blocks = host::lengthOf(session->link().poll(plan->addresses));
    const auto view = WatchView::create(formOf(options), Terminal::detect(), stale);
    const bool lineHeld = follow(*session, list, *view, options.rounds * blocks);
    // Whoever ends the watch by hand goes away; a watch that is over by itself was a look.
    const bool stopped = !lineHeld || !shouldEnd() || session->stopSafely(name);
    const int exitCode = outcome(*session, options, lineHeld);
    return exitCode == ExitDone && !stopped ? ExitFailed : exitCode;
}

} // namespace

void addWatch(CommandLine &line)
{
    Command command = line.add("watch", "poll registers and show them as they change");
    const auto options = std::make_shared<Options>();
    command.words("address", options->words, "registers, such as F c.13 D 0-9 2:SW", false);
    command.number("--rounds", options->rounds, "through all registers; 0 until Ctrl-C", 0,
                   1000000);
    command.flag("--csv", options->csv, "print comma-separated values");
    command.flag("--names", options->names, "with names and units of the simulated inverter");
    addLineOptions(command, options->line, QStringLiteral("watch"));
    command.example(QStringLiteral("dx4 watch --port /dev/ttyUSB0 --names D 0-7 SW FU"),
                    QStringLiteral("a live table until Ctrl-C"));
    command.example(QStringLiteral("dx4 watch --port /dev/ttyUSB0 --csv --rounds 10 D 0-3 2:D 0-3"),
                    QStringLiteral("ten rounds over two stations into a file or a pipe"));
    command.action([options] { return runWatch(*options); });
}

} // namespace dx4::cli
