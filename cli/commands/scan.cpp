// SPDX-License-Identifier: MIT
// dx4 scan: finds the stations on a line.
#include "cli/commands/commands.h"

#include "cli/console/interrupt.h"
#include "cli/console/output.h"
#include "cli/line/line_variants.h"
#include "cli/line/scan_state.h"
#include "cli/line/session.h"
#include "cli/registers/reply_text.h"
#include "cli/registers/target.h"
#include "host/base/length.h"
#include "host/frames/verdict_text.h"
#include "wire/limits.h"

#include <QFile>
#include <QJsonArray>

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace dx4::cli {
namespace {

constexpr int barWidth = 40;

struct Options {
    LineOptions line;
    int from = 0; ///< 0: not given
    int to = 0;
    QString resume; ///< file of the state; empty: none
    LineVariants variants;
};

/// Where a scan stands among several settings of the line.
struct Round {
    int number = 0;
    int count = 1;
    QString settings; ///< "19200 8E1"; empty where there is one alone
};

/// A bar on standard error, where that is a terminal.
class Progress {
public:
    Progress(const ScanState &state, Round round, bool trace)
        : m_from(state.from)
        , m_total(state.to - state.from + 1)
        , m_round(std::move(round))
        , m_shown(!trace && isatty(STDERR_FILENO) != 0)
    {
    }
    ~Progress() { clear(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void draw(int station, int found)
    {
        if (!m_shown)
            return;
        const int asked = m_round.number * m_total + station - m_from;
        const int done = asked * barWidth / (m_total * m_round.count);
        const QString settings =
            m_round.settings.isEmpty() ? QString() : m_round.settings + QStringLiteral(", ");
        const QString bar = QString(done, QLatin1Char('#')).leftJustified(barWidth);
        writeTalk(filled("\r[%1] %2station %3, %4 found\x1b[K", bar, settings, station, found));
    }

    void clear()
    {
        if (m_shown)
            writeTalk(QStringLiteral("\r\x1b[K"));
    }

private:
    int m_from;
    int m_total;
    Round m_round;
    bool m_shown;
};

void printFound(int station, const QString &how, const LineOptions &line, const Round &round)
{
    const bool isNamed = !round.settings.isEmpty();
    const host::LineSettings &settings = line.plant.line;
    print(line.json,
          { { "station", station },
            { "reply", how },
            { "speed", valueIf(isNamed, settings.speed) },
            { "format", valueIf(isNamed, formatText(settings)) } },
          isNamed ? "{speed} {format}, station {station}: {reply}" : "station {station}: {reply}");
}

/// How the station answered a read of its status word; empty when it is silent.
///
/// @param soundOnly  noise counts as silence, as wrong settings lead to it
/// @param failure    out: set when the line itself does not work, or on Ctrl-C
QString ask(Session &session, int station, bool soundOnly, Failure *failure)
{
    const Target status { station, QStringLiteral("SW"), 0, 1 };
    const auto values = session.read(status, failure);
    if (values) {
        *failure = { ExitDone, QString() };
        return filled("status word %1", hex(values->constFirst(), 4));
    }
    if (failure->code == ExitLine || failure->code == ExitInterrupted)
        return QString();
    const bool silent = failure->code == ExitNoReply || (soundOnly && failure->code != ExitRefused);
    *failure = { ExitDone, QString() };
    return silent ? QString() : host::verdictText(session.verdict());
}

int endEarly(const Options &options, const ScanState &state, const ScanKeeper &keeper,
             const Round &round, Failure failure)
{
    const QString how =
        keeper.isKept() ? filled("--resume %1", options.resume) : filled("--from %1", state.next);
    if (failure.code == ExitInterrupted)
        failure.text += filled(" before station %1", state.next);
    if (failure.code == ExitInterrupted && !interrupted())
        failure.code = ExitDone; // the reader had enough
    failure.text += round.settings.isEmpty() ? filled("; go on with %1", how)
                                             : filled(" at %1", round.settings);
    return complain(failure);
}

int scan(Session &session, const Options &options, ScanState &state, ScanKeeper &keeper,
         const Round &round = {})
{
    Progress progress(state, round, options.line.trace);
    while (state.next <= state.to) {
        progress.draw(state.next, host::lengthOf(state.found));
        Failure failure { ExitDone, QString() };
        const QString how = ask(session, state.next, !round.settings.isEmpty(), &failure);
        if (failure.code != ExitDone) {
            progress.clear();
            return endEarly(options, state, keeper, round, failure);
        }
        if (!how.isEmpty()) {
            progress.clear();
            printFound(state.next, how, session.options(), round);
            state.found.append(state.next);
        }
        ++state.next;
        keeper.keep(state);
    }
    return ExitDone;
}

/// The stations that are asked for; what is not said stays as it is in the file.
std::optional<ScanState> goneOn(const Options &options, const ScanState &saved, Failure *failure)
{
    const int from = options.from > 0 ? options.from : saved.from;
    const int to = options.to > 0 ? options.to : saved.to;
    if (goesOn(saved, from, to))
        return ScanState { from, to, saved.next, saved.found };
    return refuse(failure,
                  filled("%1: its scan of stations %2 to %3 goes on with station %4; leave --from "
                         "and --to out, or name another file with --resume",
                         options.resume, saved.from, saved.to, saved.next));
}

/// Where the scan begins: anew, or where the file says.
std::optional<ScanState> beginning(const Options &options, Failure *failure)
{
    if (!options.resume.isEmpty() && !canBeWritten(options.resume, failure))
        return std::nullopt;
    if (options.resume.isEmpty() || !QFile::exists(options.resume)) {
        const int from = std::max(options.from, 1);
        const int to = options.to > 0 ? options.to : lastStation;
        if (from <= to)
            return ScanState { from, to, from, {} };
        return refuse(failure, filled("--to %1 is below --from %2", to, from));
    }
    const auto saved = loadScanState(options.resume);
    if (saved)
        return goneOn(options, *saved, failure);
    return refuse(
        failure, // the end of the scan would remove it
        filled("%1: not the state of a scan; name another file with --resume", options.resume),
        ExitFailed);
}

/// @param found  nothing where the port did not take the settings
void printSummary(const host::LineSettings &line, const std::optional<QVector<int>> &found,
                  bool json)
{
    QStringList words;
    QJsonArray stations;
    for (const int station : found.value_or(QVector<int>())) {
        words.append(QString::number(station));
        stations.append(station);
    }
    QString what = words.join(QStringLiteral(", "));
    if (!found)
        what = QStringLiteral("not taken by the port");
    else if (words.isEmpty())
        what = QStringLiteral("nothing");
    else
        what.prepend(words.size() == 1 ? QStringLiteral("station ") : QStringLiteral("stations "));
    print(json,
          { { "event", QStringLiteral("settings") },
            { "speed", line.speed },
            { "format", formatText(line) },
            { "stations", found ? QJsonValue(stations) : QJsonValue(), what } },
          "{speed} {format}: {stations}");
}

/// Scans with one setting of the line after the other, and says at the end which found what.
int scanSettings(const Options &options)
{
    Failure failure;
    const auto all = variantsOf(options.line.plant.line, options.variants, &failure);
    const auto begin = all ? beginning(options, &failure) : std::nullopt;
    if (!begin)
        return complain(failure);
    QVector<std::optional<QVector<int>>> found;
    bool isAny = false;
    for (const host::LineSettings &line : *all) {
        const Round round { host::lengthOf(found), host::lengthOf(*all),
                            filled("%1 %2", line.speed, formatText(line)) };
        LineOptions own = options.line;
        own.plant.line = line;
        ScanState state = *begin;
        const auto session = Session::open(own, &failure);
        // An adapter need not have every setting; without the first one there may be no port.
        if (!session && (found.isEmpty() || failure.code != ExitLine))
            return complain(failure);
        if (!session) {
            found.append(std::nullopt);
            continue;
        }
        ScanKeeper keeper { QString() };
        const int code = scan(*session, options, state, keeper, round);
        if (code != ExitDone)
            return code;
        found.append(state.found);
        isAny = isAny || !state.found.isEmpty();
    }
    for (int i = 0; i < host::lengthOf(found); ++i)
        printSummary(all->at(i), found.at(i), options.line.json);
    return isAny ? ExitDone : ExitNoReply;
}

int runScan(const Options &options)
{
    if (options.variants.areGiven())
        return scanSettings(options);
    Failure failure;
    auto state = beginning(options, &failure);
    if (!state)
        return complain(failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(failure);
    for (const int station : std::as_const(state->found))
        printFound(station, QStringLiteral("found before"), options.line, {});
    ScanKeeper keeper(options.resume);
    const int exitCode = scan(*session, options, *state, keeper);
    if (exitCode != ExitDone)
        return exitCode;
    keeper.drop();
    note(counted(state->found.size(), "station", "stations") + QStringLiteral(" found"));
    if (keeper.failed())
        return ExitFailed;
    return state->found.isEmpty() ? ExitNoReply : ExitDone;
}

} // namespace

void describeScan(Command &command)
{
    Options &options = command.action(runScan);
    options.line.timeout = 100; // most stations are not there
    options.line.retries = 0;
    command.number("--from", options.from, "first station to ask; else 1", 1, lastStation);
    command.number("--to", options.to, "last station to ask; else 247", 1, lastStation);
    command.text("--resume", options.resume, "keep the state here and go on from it", "FILE");
    command.text("--speeds", options.variants.speeds, "try these in turn, such as 9600,19200",
                 "LIST");
    command.text("--parities", options.variants.parities, "try these in turn, of N, E and O",
                 "LIST");
    command.flag("--all-settings", options.variants.all, "try the usual speeds and all parities");
    addLineOptions(command, options.line);
    for (const char *several : { "--speeds", "--parities" }) {
        command.excludes(several, "--resume");
        command.excludes(several, "--all-settings");
    }
    command.excludes("--speeds", "--speed");
    command.excludes("--parities", "--format");
    for (const char *one : { "--resume", "--speed", "--format" })
        command.excludes("--all-settings", one);
    command.without("--station"); // --from and --to say which
    command.example("dx4 scan --port /dev/ttyUSB0 --to 3", "the first three stations");
    command.example("dx4 scan --port /dev/ttyUSB0 --speeds 9600,19200 --parities "
                    "N,E --to 1",
                    "which of four settings station 1 answers to");
}

} // namespace dx4::cli
