// SPDX-License-Identifier: MIT
// dx4 params: the parameters of a station in a file.
#include "cli/commands/commands.h"

#include "cli/console/interrupt.h"
#include "cli/console/output.h"
#include "cli/line/session.h"
#include "cli/registers/reply_text.h"
#include "cli/registers/value_output.h"
#include "host/base/length.h"
#include "host/parameters/parameter_transfer.h"
#include "host/runtime/runtime_access.h"

#include <QFileInfo>
#include <QJsonArray>

#include <unistd.h>

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList files;
};

/// The share that is done, on standard error where that is a terminal.
void showProgress(int done, int total)
{
    if (isatty(STDERR_FILENO))
        writeTalk(filled("\r%1 of %2%3", done, total, done == total ? "\r\x1b[K" : "\x1b[K"));
}

/// The station through the session's runtime; ends with Ctrl-C between two requests.
class Access : public host::RegisterAccess {
public:
    explicit Access(Session &session)
        : m_session(session)
        , m_access(session.runtime())
    {
    }

    int blockSize() const override { return m_access.blockSize(); }
    host::AccessResult read(int station, const QString &regType, int address, int count) override
    {
        m_session.giveWayIfAsked();
        return shouldEnd() ? ended() : m_access.read(station, regType, address, count);
    }
    host::AccessResult write(int station, const QString &regType, int address,
                             quint16 value) override
    {
        m_session.giveWayIfAsked();
        return shouldEnd() ? ended() : m_access.write(station, regType, address, value);
    }

private:
    static host::AccessResult ended()
    {
        return { host::AccessResult::Kind::NotBegun, QStringLiteral("interrupted"), {} };
    }

    Session &m_session;
    host::RuntimeAccess m_access;
};

/// The code for a transfer that broke off; what happened last says why.
Failure brokenOff(Session &session, const QString &error)
{
    if (shouldEnd())
        return { ExitInterrupted, error };
    const ExitCode code = session.line().isOpen() ? causeCode(session.verdict()) : ExitLine;
    return { code == ExitDone ? ExitLine : code, error };
}

/// Reads what the set does not have yet from the station of the options.
bool readSet(const LineOptions &options, host::ParameterSet &set, Failure *failure)
{
    const auto session = Session::open(options, failure);
    if (!session)
        return false;
    Access access(*session);
    QString error;
    if (host::readParameters(access, set, &error, showProgress))
        return true;
    *failure = brokenOff(*session, error);
    return false;
}

std::optional<host::ParameterSet> loadSet(const QString &file, Failure *failure)
{
    QString error;
    auto set = host::loadParameterSet(file, &error);
    if (!set)
        *failure = { ExitFailed, error };
    return set;
}

/// Parameters of one station do not meet another one by mistake.
///
/// @param what  would be done, "restore it to"
bool mayMeet(const Options &options, const host::ParameterSet &set, const char *what,
             Failure *failure)
{
    const LineOptions &line = options.line;
    if (set.station == line.station || line.stationIsGiven)
        return true;
    return fail(failure,
                filled("%1 is of station %2; to %3 station %4 say --station %4, else --station %2",
                       options.files.constFirst(), set.station, what, line.station));
}

void printSet(const host::ParameterSet &set, bool json)
{
    if (!json)
        return writeText(host::toText(set));
    for (auto it = set.values.cbegin(); it != set.values.cend(); ++it)
        printJson(registerFacts(set.station, QStringLiteral("F"), it.key())
                  + Facts { { "value", it.value() } });
}

void printKept(const QString &file, const host::ParameterSet &set, bool json)
{
    const int count = host::lengthOf(set.values);
    print(json,
          { { "file", file },
            { "parameters", count, counted(count, "parameter", "parameters") },
            { "complete", host::isComplete(set) } },
          "{parameters} in {file}");
}

int dumpToOutput(const Options &options)
{
    host::ParameterSet set;
    set.station = options.line.station;
    Failure failure;
    const bool complete = readSet(options.line, set, &failure);
    printSet(set, options.line.json);
    return complete ? ExitDone : complain(failure);
}

/// What the file holds, made sure that it may be replaced; an empty set where there is no file.
std::optional<host::ParameterSet> replaceable(const Options &options, Failure *failure)
{
    const QString &file = options.files.constFirst();
    host::ParameterSet held;
    held.station = options.line.station;
    if (QFileInfo::exists(file)) {
        const auto loaded = loadSet(file, failure);
        if (!loaded || !mayMeet(options, *loaded, "replace it by", failure))
            return std::nullopt;
        held = *loaded;
    }
    return canBeWritten(file, failure) ? std::optional(held) : std::nullopt;
}

int dumpToFile(const Options &options)
{
    const QString &file = options.files.constFirst();
    Failure failure;
    const auto held = replaceable(options, &failure);
    if (!held)
        return complain(failure);
    host::ParameterSet set;
    set.station = options.line.station;
    if (!host::isComplete(*held) && held->station == set.station)
        set = *held; // goes on where it broke off
    const bool complete = readSet(options.line, set, &failure);
    if (!complete && host::isComplete(*held)) {
        failure.text += filled("; %1 stays as it was, a complete set", file);
        return complain(failure);
    }
    QString error;
    if (!set.values.isEmpty() && !host::saveParameterSet(file, set, &error))
        return complain({ ExitFailed, error });
    if (!set.values.isEmpty())
        printKept(file, set, options.line.json);
    return complete ? ExitDone : complain(failure);
}

int runDump(const Options &options)
{
    Failure failure;
    if (!namesStation(options.line, &failure))
        return complain(failure);
    return options.files.isEmpty() ? dumpToOutput(options) : dumpToFile(options);
}

void printDifferences(const QVector<host::ParameterDifference> &differences, bool json)
{
    const auto valueOf = [](const std::optional<quint16> &value) {
        return valueIf(value.has_value(), value.value_or(0));
    };
    for (const host::ParameterDifference &difference : differences)
        json ? printJson(registerFacts(QStringLiteral("F"), difference.address)
                         + Facts { { "first", valueOf(difference.first) },
                                   { "second", valueOf(difference.second) } })
             : printLine(difference.text());
}

int runDiff(const Options &options)
{
    Failure failure;
    const auto first = loadSet(options.files.constFirst(), &failure);
    if (!first)
        return complain(failure);
    host::ParameterSet second;
    second.station = options.line.station;
    if (options.files.size() > 1) {
        const auto loaded = loadSet(options.files.at(1), &failure);
        if (!loaded)
            return complain(failure);
        second = *loaded;
    } else if (!namesStation(options.line, &failure)
               || !mayMeet(options, *first, "compare it with", &failure)
               || !readSet(options.line, second, &failure)) {
        return complain(failure);
    }
    if (first->station != second.station)
        note(filled("station %1 | station %2", first->station, second.station));
    const auto differences = host::compare(*first, second);
    printDifferences(differences, options.line.json);
    return differences.isEmpty() ? ExitDone : ExitDiffers;
}

/// @param from, to  station of the file, and the one that was written to
void printReport(const host::RestoreReport &report, int from, int to, bool json)
{
    print(json,
          { { "fileStation", from },
            { "station", to },
            { "compared", report.compared },
            { "written", report.written },
            { "verified", report.verified },
            { "refused", QJsonArray::fromStringList(report.refused),
              QString::number(report.refused.size()) },
            { "remaining", host::lengthOf(report.remaining) },
            { "notLookedAt", report.unseen },
            { "restored", report.isRestored() } },
          "station {fileStation} to station {station}: {compared} compared, {written} written, "
          "{verified} verified\n"
          "{refused} refused, {remaining} still different, {notLookedAt} not looked at");
}

int runRestore(const Options &options)
{
    Failure failure;
    if (!mayDrive(options.line, options.line.station, &failure))
        return complain(failure);
    const auto wanted = loadSet(options.files.constFirst(), &failure);
    if (!wanted || !mayMeet(options, *wanted, "restore it to", &failure))
        return complain(failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(failure);
    if (!host::isComplete(*wanted))
        note(
            filled("%1 is not complete; what it lacks stays as it is", options.files.constFirst()));
    Access access(*session);
    const host::RestoreReport report =
        host::restoreParameters(access, options.line.station, *wanted, showProgress);
    printReport(report, wanted->station, options.line.station, options.line.json);
    for (const QString &refusal : report.refused)
        note(refusal);
    printDifferences(report.remaining, options.line.json);
    if (!report.interrupted.isEmpty())
        return complain(brokenOff(*session, report.interrupted));
    return report.isRestored() ? ExitDone : ExitDiffers;
}

} // namespace

void describeParams(Command &params)
{
    Command dump = params.sub("dump", "read all parameters");
    Options &dumping = dump.action(runDump);
    dump.words("file", dumping.files, "to write, and to go on from; else standard output", anyFile,
               false, 1);
    addLineOptions(dump, dumping.line);
    dump.example("dx4 params dump --port /dev/ttyUSB0 drive.txt", "all parameters of station 1");

    Command diff = params.sub("diff", "compare a file with another, or with the station");
    Options &comparing = diff.action(runDiff);
    diff.words("file", comparing.files, "one or two files", anyFile, true, 2);
    addLineOptions(diff, comparing.line);
    diff.example("dx4 params diff --port /dev/ttyUSB0 drive.txt",
                 "exit code 8 when something differs");

    Command restore = params.sub("restore", "write what differs and read it back");
    Options &restoring = restore.action(runRestore);
    restore.words("file", restoring.files, "parameters to restore", anyFile, true, 1);
    addLineOptions(restore, restoring.line);
    restore.example("dx4 params restore --port /dev/ttyUSB0 drive.txt",
                    "station 1 holds what the file says");
}

} // namespace dx4::cli
