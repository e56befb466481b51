// SPDX-License-Identifier: MIT
// dx4 scan: finds the stations on a line.
#include "cli/commands/scan.h"

#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/reply_text.h"
#include "cli/scan_state.h"
#include "cli/session.h"
#include "cli/target.h"
#include "host/length.h"
#include "host/modbus_limits.h"
#include "host/verdict_text.h"

#include <QFile>

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
};

/// Keeps the state in a file, as long as that takes it.
class Keeper {
public:
    explicit Keeper(QString file)
        : m_file(std::move(file))
    {
    }

    void keep(const ScanState &state)
    {
        QString error;
        if (m_file.isEmpty() || m_failed || saveScanState(m_file, state, &error))
            return;
        m_failed = true;
        note(QStringLiteral("scan"), QStringLiteral("the state is not kept: %1").arg(error));
    }

    /// The scan is through; the next one begins anew.
    void drop()
    {
        QFile file(m_file);
        if (m_file.isEmpty() || !file.exists() || file.remove())
            return;
        m_failed = true;
        note(QStringLiteral("scan"),
             QStringLiteral("%1 cannot be removed, and the scan is through: %2")
                 .arg(m_file, file.errorString()));
    }

    bool failed() const { return m_failed; }
    bool isKept() const { return !m_file.isEmpty() && !m_failed; }

private:
    QString m_file; // empty: nothing is kept
    bool m_failed = false;
};

/// A bar on standard error, where that is a terminal.
class Progress {
public:
    Progress(int from, int to, bool trace)
        : m_from(from)
        , m_total(to - from + 1)
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
        const int done = (station - m_from) * barWidth / m_total;
        const QString bar = QString(done, QLatin1Char('#')).leftJustified(barWidth);
        writeTalk(
            QStringLiteral("\r[%1] station %2, %3 found\x1b[K").arg(bar).arg(station).arg(found));
    }

    void clear()
    {
        if (m_shown)
            writeTalk(QStringLiteral("\r\x1b[K"));
    }

private:
    int m_from;
    int m_total;
    bool m_shown;
};

void printFound(int station, const QString &how, bool json)
{
    if (json)
        printJson({ { QStringLiteral("station"), station }, { QStringLiteral("reply"), how } });
    else
        printLine(QStringLiteral("station %1: %2").arg(station).arg(how));
}

/// How the station answered a read of its status word; empty when it is silent.
///
/// @param failure  out: set when the line itself does not work, or on Ctrl-C
QString ask(Session &session, int station, Failure *failure)
{
    const Target status { station, QStringLiteral("SW"), 0, 1 };
    const auto values = session.read(status, failure);
    if (values) {
        *failure = { ExitDone, QString() };
        return QStringLiteral("status word %1").arg(hex(values->constFirst(), 4));
    }
    if (failure->code == ExitLine || failure->code == ExitInterrupted)
        return QString();
    const bool silent = failure->code == ExitNoReply;
    *failure = { ExitDone, QString() };
    return silent ? QString() : host::verdictText(session.verdict());
}

int endEarly(const Options &options, const ScanState &state, const Keeper &keeper, Failure failure)
{
    const QString how = keeper.isKept() ? QStringLiteral("--resume %1").arg(options.resume)
                                        : QStringLiteral("--from %1").arg(state.next);
    if (failure.code == ExitInterrupted)
        failure.text += QStringLiteral(" before station %1").arg(state.next);
    if (failure.code == ExitInterrupted && !interrupted())
        failure.code = ExitDone; // the reader had enough
    failure.text += QStringLiteral("; go on with %1").arg(how);
    return complain(QStringLiteral("scan"), failure);
}

int scan(Session &session, const Options &options, ScanState &state, Keeper &keeper)
{
    Progress progress(state.from, state.to, options.line.trace);
    while (state.next <= state.to) {
        progress.draw(state.next, host::lengthOf(state.found));
        Failure failure { ExitDone, QString() };
        const QString how = ask(session, state.next, &failure);
        if (failure.code != ExitDone) {
            progress.clear();
            return endEarly(options, state, keeper, failure);
        }
        if (!how.isEmpty()) {
            progress.clear();
            printFound(state.next, how, options.line.json);
            state.found.append(state.next);
        }
        ++state.next;
        keeper.keep(state);
    }
    return ExitDone;
}

std::optional<ScanState> fromTheStart(int from, int to, Failure *failure)
{
    if (from <= to)
        return ScanState { from, to, from, {} };
    *failure = { ExitUsage, QStringLiteral("--to %1 is below --from %2").arg(to).arg(from) };
    return std::nullopt;
}

/// The stations that are asked for; what is not said stays as it is in the file.
std::optional<ScanState> goneOn(const Options &options, const ScanState &saved, Failure *failure)
{
    const int from = options.from > 0 ? options.from : saved.from;
    const int to = options.to > 0 ? options.to : saved.to;
    if (goesOn(saved, from, to))
        return ScanState { from, to, saved.next, saved.found };
    *failure = { ExitUsage,
                 QStringLiteral("%1: its scan of stations %2 to %3 goes on with station %4; leave "
                                "--from and --to out, or name another file with --resume")
                     .arg(options.resume)
                     .arg(saved.from)
                     .arg(saved.to)
                     .arg(saved.next) };
    return std::nullopt;
}

/// Where the scan begins: anew, or where the file says.
std::optional<ScanState> beginning(const Options &options, Failure *failure)
{
    const bool isAnew = options.resume.isEmpty() || !QFile::exists(options.resume);
    if (!options.resume.isEmpty() && !canBeWritten(options.resume, failure))
        return std::nullopt;
    if (isAnew)
        return fromTheStart(options.from > 0 ? options.from : 1,
                            options.to > 0 ? options.to : host::lastStation, failure);
    const auto saved = loadScanState(options.resume);
    if (saved)
        return goneOn(options, *saved, failure);
    *failure = { ExitFailed, // the end of the scan would remove it
                 QStringLiteral("%1: not the state of a scan; name another file with --resume")
                     .arg(options.resume) };
    return std::nullopt;
}

int runScan(const Options &options)
{
    const QString name = QStringLiteral("scan");
    Failure failure;
    auto state = beginning(options, &failure);
    if (!state)
        return complain(name, failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(name, failure);
    for (const int station : std::as_const(state->found))
        printFound(station, QStringLiteral("found before"), options.line.json);
    Keeper keeper(options.resume);
    const int exitCode = scan(*session, options, *state, keeper);
    if (exitCode != ExitDone)
        return exitCode;
    keeper.drop();
    note(name,
         counted(static_cast<quint64>(state->found.size()), "station", "stations")
             + QStringLiteral(" found"));
    if (keeper.failed())
        return ExitFailed;
    return state->found.isEmpty() ? ExitNoReply : ExitDone;
}

} // namespace

void addScan(CommandLine &line)
{
    Command command = line.add("scan", "find the stations on a line");
    const auto options = std::make_shared<Options>();
    options->line.timeout = 100; // most stations are not there
    options->line.retries = 0;
    command.number("--from", options->from, "first station to ask; else 1", 1, host::lastStation);
    command.number("--to", options->to, "last station to ask; else 247", 1, host::lastStation);
    command.text("--resume", options->resume, "keep the state here and go on from it", "FILE");
    addLineOptions(command, options->line, QStringLiteral("scan"));
    command.without("--station"); // --from and --to say which
    command.example(QStringLiteral("dx4 scan --port /dev/ttyUSB0 --to 3"),
                    QStringLiteral("the first three stations"));
    command.action([options] { return runScan(*options); });
}

} // namespace dx4::cli
