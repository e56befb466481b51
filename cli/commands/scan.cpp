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

#include <QFile>
#include <QTextStream>

#include <cstdio>
#include <unistd.h>

namespace dx4::cli {
namespace {

constexpr int barWidth = 40;

struct Options {
    LineOptions line;
    int from = 1;
    int to = host::lastStation;
    QString resume; ///< file of the state; empty: none
};

/// A bar on standard error, where that is a terminal.
class Progress {
public:
    Progress(int from, int to)
        : m_from(from)
        , m_total(to - from + 1)
        , m_shown(isatty(STDERR_FILENO) != 0)
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
        QTextStream(stderr) << "\r[" << QString(done, QLatin1Char('#'))
                            << QString(barWidth - done, QLatin1Char(' ')) << "] station " << station
                            << ", " << found << " found\x1b[K" << Qt::flush;
    }

    void clear()
    {
        if (m_shown)
            QTextStream(stderr) << "\r\x1b[K" << Qt::flush;
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
    return silent ? QString() : causeText(session.verdict());
}

void keepState(const QString &file, const ScanState &state)
{
    if (!file.isEmpty() && !saveScanState(file, state))
        note(QStringLiteral("scan"), QStringLiteral("cannot write %1").arg(file));
}

int endEarly(const Options &options, const ScanState &state, Failure failure)
{
    const QString how = options.resume.isEmpty()
        ? QStringLiteral("--from %1").arg(state.next)
        : QStringLiteral("--resume %1").arg(options.resume);
    if (failure.code == ExitInterrupted)
        failure.text += QStringLiteral(" before station %1").arg(state.next);
    if (failure.code == ExitInterrupted && !interrupted())
        failure.code = ExitDone; // the reader had enough
    failure.text += QStringLiteral("; go on with %1").arg(how);
    return complain(QStringLiteral("scan"), failure);
}

int scan(Session &session, const Options &options, ScanState &state)
{
    Progress progress(options.from, options.to);
    while (state.next <= options.to) {
        progress.draw(state.next, host::lengthOf(state.found));
        Failure failure { ExitDone, QString() };
        const QString how = ask(session, state.next, &failure);
        if (failure.code != ExitDone) {
            progress.clear();
            return endEarly(options, state, failure);
        }
        if (!how.isEmpty()) {
            progress.clear();
            printFound(state.next, how, options.line.json);
            state.found.append(state.next);
        }
        ++state.next;
        keepState(options.resume, state);
    }
    return ExitDone;
}

/// Where the scan begins: anew, or where the file says.
std::optional<ScanState> beginning(const Options &options, Failure *failure)
{
    ScanState anew;
    anew.next = options.from;
    if (options.resume.isEmpty())
        return anew;
    const bool exists = QFile::exists(options.resume);
    const auto saved = exists ? loadScanState(options.resume) : anew;
    if (!saved) // the end of the scan would remove it
        *failure = { ExitFailed,
                     QStringLiteral("%1: not the state of a scan; name another file with --resume")
                         .arg(options.resume) };
    return saved && canBeWritten(options.resume, failure) ? saved : std::nullopt;
}

int runScan(const Options &options)
{
    const QString name = QStringLiteral("scan");
    if (options.to < options.from)
        return complain(
            name,
            { ExitUsage,
              QStringLiteral("--to %1 is below --from %2").arg(options.to).arg(options.from) });
    Failure failure;
    auto state = beginning(options, &failure);
    if (!state)
        return complain(name, failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(name, failure);
    for (const int station : std::as_const(state->found))
        printFound(station, QStringLiteral("found before"), options.line.json);
    const int exitCode = scan(*session, options, *state);
    if (exitCode != ExitDone)
        return exitCode;
    if (!options.resume.isEmpty())
        QFile::remove(options.resume); // the next scan begins anew
    note(name,
         counted(static_cast<quint64>(state->found.size()), "station", "stations")
             + QStringLiteral(" found"));
    return state->found.isEmpty() ? ExitNoReply : ExitDone;
}

} // namespace

void addScan(CommandLine &line)
{
    Command command = line.add("scan", "find the stations on a line");
    const auto options = std::make_shared<Options>();
    options->line.timeout = 100; // most stations are not there
    options->line.retries = 0;
    command.number("--from", options->from, "first station to ask", 1, host::lastStation);
    command.number("--to", options->to, "last station to ask", 1, host::lastStation);
    command.text("--resume", options->resume, "keep the state here and go on from it", "FILE");
    addLineOptions(command, options->line, QStringLiteral("scan"));
    command.example(QStringLiteral("dx4 scan --port /dev/ttyUSB0 --to 3"),
                    QStringLiteral("the first three stations"));
    command.action([options] { return runScan(*options); });
}

} // namespace dx4::cli
