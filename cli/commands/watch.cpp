// SPDX-License-Identifier: MIT
// dx4 watch: polls registers and shows them.
#include "cli/commands/commands.h"

#include "cli/commands/watch_view.h"
#include "cli/line/polling.h"
#include "cli/line/session.h"
#include "cli/line/watch_plan.h"
#include "cli/registers/register_names.h"
#include "host/base/length.h"

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr int staleRounds = 5; // rounds without an answer before a value counts as stale
constexpr host::Duration shortestStale = std::chrono::seconds(2);
constexpr int longestInterval = 86400000; // ms

struct Options {
    LineOptions line;
    QStringList words;
    int rounds = 0; ///< 0: until Ctrl-C
    int interval = 0; ///< ms from one round to the next; 0: at once
    int sample = 0; ///< ms; 0: changes are shown
    int reconnect = -1; ///< s
    PairOptions pair;
    bool clock = false;
    bool csv = false;
    bool names = false;
};

WatchStyle styleOf(const Options &options)
{
    WatchStyle style;
    if (options.line.json)
        style.form = WatchStyle::Form::Json;
    else if (options.csv)
        style.form = WatchStyle::Form::Csv;
    style.clock = options.clock;
    if (options.sample > 0)
        style.sample = std::chrono::milliseconds(options.sample);
    return style;
}

/// Keeps rounds of reads apart. They begin at equal times; one that takes longer than the interval
/// is followed by the next at once, and time is counted from there.
class Pace {
public:
    /// @param reads  of one round
    Pace(Session &session, host::Duration interval, qint64 reads)
        : m_session(session)
        , m_interval(interval)
        , m_reads(reads)
        , m_roundEnd(reads)
        , m_next(session.line().now() + interval)
    {
    }

    /// Time until the next read is due.
    host::Duration rest()
    {
        const qint64 ended = endedReads(m_session.runtime().counters());
        if (ended < m_roundEnd)
            return host::Duration { 0 };
        const host::Duration now = m_session.line().now();
        if (now < m_next)
            return m_next - now;
        m_roundEnd = ended + m_reads;
        m_next = std::max(m_next, now - m_interval) + m_interval;
        return host::Duration { 0 };
    }

private:
    Session &m_session;
    host::Duration m_interval;
    qint64 m_reads;
    qint64 m_roundEnd; // reads ended by then
    host::Duration m_next; // beginning of the next round, by the line's clock
};

/// Polls until it has had enough.
PollEnd follow(Session &session, WatchList &list, WatchView &view, const Options &options,
               qint64 blocks)
{
    const qint64 reads = options.rounds * blocks;
    host::Line &line = session.line();
    const host::Runtime &runtime = session.runtime();
    const host::Duration start = line.now();
    PollSettings settings;
    settings.enough = [&] { return reads > 0 && endedReads(runtime.counters()) >= reads; };
    Pace pace(session, std::chrono::milliseconds(options.interval), blocks);
    if (options.interval > 0)
        settings.rest = [&pace] { return pace.rest(); };
    settings.afterStep = [&] {
        const host::Duration now = line.now();
        list.follow(now);
        view.values(list, runtime.counters(), now, now - start);
    };
    settings.onLine = [&view](const QString &text) { view.line(text); };
    settings.patience = patienceOf(options.reconnect, reads > 0);
    const PollEnd end = poll(session, settings);
    view.end(list, runtime.counters(), line.now(), line.now() - start);
    return end;
}

host::Duration staleAfter(const host::Plan &plan, const Options &options)
{
    const host::LineSettings &line = options.line.plant.line;
    const host::Duration round =
        std::max<host::Duration>(host::cycleTime(plan, line, line.responseTimeout),
                                 std::chrono::milliseconds(options.interval));
    return std::max(staleRounds * round, shortestStale);
}

int runWatch(const Options &options)
{
    Failure failure;
    const QStringList words = wordsOrConfigured(options.words, options.line);
    LineOptions line = options.line;
    const auto pair = pairOf(options.pair, &line.plant.link, &failure);
    const auto plan = pair ? makePlan(words, line, &failure) : std::nullopt;
    if (!plan)
        return complain(failure);
    SessionWishes wishes;
    wishes.staleAfter = staleAfter(*plan, options);
    const auto session = Session::open(line, &failure, wishes);
    if (!session)
        return complain(failure);
    const host::DriverApi &api = session->runtime().link().api();
    const auto targets = parseTargets(words, usualStation(options.line), ReadAccess, api, &failure);
    if (!targets || !arePairs(*targets, *pair, &failure)
        || !areReadTogether(*targets, *plan, *pair, &failure))
        return complain(failure);
    const RegisterNames names(options.line.plant, api, options.names);
    WatchList list(names.of(*targets, *pair), session->runtime());
    session->runtime().setPlan(*plan);
    const qint64 blocks = host::lengthOf(plan->blocks);
    PollEnd end = PollEnd::Enough;
    {
        const auto view =
            WatchView::create(styleOf(options), Terminal::detect(options.line.trace), list.rows());
        // In JSON a notice is an event.
        if (!options.line.json)
            session->onNotice([&view](const QString &text) { view->line(text); });
        end = follow(*session, list, *view, options, blocks);
        session->onNotice({});
    }
    // Whoever ends the watch by hand goes away; a watch that is over by itself was a look.
    const bool stopped = end != PollEnd::Asked || session->stopSafely();
    return codeOfEnd(*session, end, options.rounds > 0, "read", stopped);
}

} // namespace

void describeWatch(Command &command)
{
    Options &options = command.action(runWatch);
    command.words("address", options.words, "registers, such as F c.13 D 0-9 2:SW",
                  readableRegister, false);
    command.number("--rounds", options.rounds, "through all registers; 0 until Ctrl-C", 0, 1000000);
    command.number("--interval", options.interval,
                   "ms from one round of reads to the next; 0: no pause", 0, longestInterval);
    command.number("--sample", options.sample,
                   "ms; print all values in one row so often; 0: changes", 0, longestInterval);
    command.flag("--clock", options.clock, "with date and time of day in place of seconds");
    command.flag("--csv", options.csv, "print comma-separated values");
    command.flag("--names", options.names, "with names and units of the simulated inverter");
    addPairOptions(command, options.pair);
    addPollOptions(command, options.reconnect);
    addLineOptions(command, options.line);
    command.excludes("--csv", "--json");
    command.example("dx4 watch --port /dev/ttyUSB0 --names D 0-7 SW FU",
                    "a live table until Ctrl-C");
    command.example("dx4 watch --port /dev/ttyUSB0 --csv --rounds 10 D 0-3 2:D 0-3",
                    "ten rounds over two stations into a file or a pipe");
    command.example("dx4 watch --port /dev/ttyUSB0 --interval 200 --sample 500 "
                    "--clock --rounds 10 D 0-3",
                    "five reads a second, two rows a second for a spreadsheet");
}

} // namespace dx4::cli
