// SPDX-License-Identifier: MIT
// dx4 params: the parameters of a station in a file.
#include "cli/commands/params.h"

#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/reply_text.h"
#include "cli/session.h"
#include "cli/value_output.h"
#include "host/length.h"
#include "host/parameter_transfer.h"
#include "host/runtime_access.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QTextStream>

#include <cstdio>
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
        QTextStream(stderr) << "\r" << done << " of " << total
                            << (done == total ? "\r\x1b[K" : "\x1b[K") << Qt::flush;
}

/// The station through the session's runtime; ends with Ctrl-C between two requests.
class Access : public host::RegisterAccess {
public:
    explicit Access(Session &session)
        : m_access(session.runtime())
    {
    }

    int blockSize() const override { return m_access.blockSize(); }
    host::AccessResult read(int station, const QString &regType, int address, int count) override
    {
        return shouldEnd() ? ended() : m_access.read(station, regType, address, count);
    }
    host::AccessResult write(int station, const QString &regType, int address,
                             quint16 value) override
    {
        return shouldEnd() ? ended() : m_access.write(station, regType, address, value);
    }

private:
    static host::AccessResult ended()
    {
        return { host::AccessResult::Kind::LineDown, QStringLiteral("interrupted"), {} };
    }

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

void printSet(const host::ParameterSet &set, bool json)
{
    if (!json) {
        writeText(host::toText(set));
        return;
    }
    for (auto it = set.values.cbegin(); it != set.values.cend(); ++it) {
        QJsonObject object = registerJson(set.station, QStringLiteral("F"), it.key());
        object.insert(QStringLiteral("value"), it.value());
        printJson(object);
    }
}

void printKept(const QString &file, const host::ParameterSet &set, bool json)
{
    const int count = host::lengthOf(set.values);
    if (json) {
        printJson({ { QStringLiteral("file"), file },
                    { QStringLiteral("parameters"), count },
                    { QStringLiteral("complete"), host::isComplete(set) } });
        return;
    }
    printLine(QStringLiteral("%1 in %2")
                  .arg(counted(static_cast<quint64>(count), "parameter", "parameters"), file));
}

int runDump(const Options &options)
{
    const QString name = QStringLiteral("params dump");
    const QString file = options.files.value(0);
    host::ParameterSet set;
    set.station = options.line.station;
    Failure failure;
    if (!file.isEmpty() && QFileInfo::exists(file)) {
        const auto begun = loadSet(file, &failure);
        if (!begun)
            return complain(name, failure);
        if (!host::isComplete(*begun) && begun->station == set.station)
            set = *begun; // goes on where it broke off
    }
    if (!file.isEmpty() && !canBeWritten(file, &failure))
        return complain(name, failure);
    const bool complete = readSet(options.line, set, &failure);
    QString error;
    if (!file.isEmpty() && !set.values.isEmpty() && !host::saveParameterSet(file, set, &error))
        return complain(name, { ExitFailed, error });
    if (file.isEmpty())
        printSet(set, options.line.json);
    else if (!set.values.isEmpty())
        printKept(file, set, options.line.json);
    return complete ? ExitDone : complain(name, failure);
}

void printDifferences(const QVector<host::ParameterDifference> &differences, bool json)
{
    for (const host::ParameterDifference &difference : differences) {
        if (!json) {
            printLine(difference.text());
            continue;
        }
        QJsonObject object = registerJson(0, QStringLiteral("F"), difference.address);
        object.remove(QStringLiteral("station"));
        if (difference.first)
            object.insert(QStringLiteral("first"), *difference.first);
        if (difference.second)
            object.insert(QStringLiteral("second"), *difference.second);
        printJson(object);
    }
}

int runDiff(const Options &options)
{
    const QString name = QStringLiteral("params diff");
    Failure failure;
    const auto first = loadSet(options.files.constFirst(), &failure);
    if (!first)
        return complain(name, failure);
    host::ParameterSet second;
    second.station = options.line.station;
    if (options.files.size() > 1) {
        const auto loaded = loadSet(options.files.at(1), &failure);
        if (!loaded)
            return complain(name, failure);
        second = *loaded;
    } else if (!readSet(options.line, second, &failure)) {
        return complain(name, failure);
    }
    const auto differences = host::compare(*first, second);
    printDifferences(differences, options.line.json);
    return differences.isEmpty() ? ExitDone : ExitDiffers;
}

void printReport(const host::RestoreReport &report, bool json)
{
    if (json) {
        printJson({ { QStringLiteral("compared"), report.compared },
                    { QStringLiteral("written"), report.written },
                    { QStringLiteral("refused"), QJsonArray::fromStringList(report.refused) },
                    { QStringLiteral("remaining"), host::lengthOf(report.remaining) },
                    { QStringLiteral("restored"), report.isRestored() } });
        return;
    }
    printLine(QStringLiteral("%1 compared, %2 written, %3 refused, %4 still different")
                  .arg(report.compared)
                  .arg(report.written)
                  .arg(report.refused.size())
                  .arg(report.remaining.size()));
}

int runRestore(const Options &options)
{
    const QString name = QStringLiteral("params restore");
    Failure failure;
    const auto wanted = loadSet(options.files.constFirst(), &failure);
    if (!wanted)
        return complain(name, failure);
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(name, failure);
    if (!host::isComplete(*wanted))
        note(name,
             QStringLiteral("%1 is not complete; what it lacks stays as it is")
                 .arg(options.files.constFirst()));
    Access access(*session);
    const host::RestoreReport report =
        host::restoreParameters(access, options.line.station, *wanted, showProgress);
    printReport(report, options.line.json);
    for (const QString &refusal : report.refused)
        note(name, refusal);
    printDifferences(report.remaining, options.line.json);
    if (!report.interrupted.isEmpty())
        return complain(name, brokenOff(*session, report.interrupted));
    return report.isRestored() ? ExitDone : ExitDiffers;
}

} // namespace

void addParams(CommandLine &line)
{
    Command params = line.add("params", "keep the parameters of a station in a file");
    Command dump = params.sub("dump", "read all parameters");
    const auto dumping = std::make_shared<Options>();
    dump.words("file", dumping->files, "to write, and to go on from; else standard output", false,
               1);
    addLineOptions(dump, dumping->line, QStringLiteral("params dump"));
    dump.example(QStringLiteral("dx4 params dump --port /dev/ttyUSB0 drive.txt"),
                 QStringLiteral("all parameters of station 1"));
    dump.action([dumping] { return runDump(*dumping); });

    Command diff = params.sub("diff", "compare a file with another, or with the station");
    const auto comparing = std::make_shared<Options>();
    diff.words("file", comparing->files, "one or two files", true, 2);
    addLineOptions(diff, comparing->line, QStringLiteral("params diff"));
    diff.example(QStringLiteral("dx4 params diff --port /dev/ttyUSB0 drive.txt"),
                 QStringLiteral("exit code 8 when something differs"));
    diff.action([comparing] { return runDiff(*comparing); });

    Command restore = params.sub("restore", "write what differs and read it back");
    const auto restoring = std::make_shared<Options>();
    restore.words("file", restoring->files, "parameters to restore", true, 1);
    addLineOptions(restore, restoring->line, QStringLiteral("params restore"));
    restore.example(QStringLiteral("dx4 params restore --port /dev/ttyUSB0 drive.txt"),
                    QStringLiteral("station 1 holds what the file says"));
    restore.action([restoring] { return runRestore(*restoring); });
}

} // namespace dx4::cli
