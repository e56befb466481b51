// SPDX-License-Identifier: MIT
// dx4 batch: commands of a file, one after the other on one line.
#include "cli/commands/commands.h"

#include "cli/console/interrupt.h"
#include "cli/line/batch_file.h"
#include "cli/line/driver_file.h"
#include "cli/line/writing.h"
#include "cli/registers/value_output.h"
#include "host/base/whole_file.h"

#include <QFile>

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr host::Duration longestPause = std::chrono::milliseconds(100);

struct Options {
    LineOptions line;
    QStringList files; ///< one
    WriteManner manner;
    bool keepGoing = false;
    bool names = false;
};

std::optional<QString> contentOf(const QString &file, Failure *failure)
{
    QString why;
    if (file != QLatin1String("-")) {
        const auto bytes = host::readWholeFile(file, &why);
        if (bytes)
            return QString::fromUtf8(*bytes);
        return refuse(failure, why, ExitFailed);
    }
    QFile input;
    if (input.open(stdin, QIODevice::ReadOnly))
        return QString::fromUtf8(input.readAll());
    return refuse(failure, filled("standard input: %1", input.errorString()), ExitFailed);
}

/// The steps on an open line.
class Play {
public:
    Play(Session &session, const Options &options, const RegisterNames &names)
        : m_session(session)
        , m_options(options)
        , m_names(names)
    {
    }

    Failure make(const BatchStep &step)
    {
        switch (step.kind) {
        case BatchStep::Kind::Set:
            return writeSetting(m_session, step.setting, m_options.manner, m_names, &m_commanded);
        case BatchStep::Kind::Get:
            return get(step.targets);
        case BatchStep::Kind::Wait:
            return wait(step.wait);
        case BatchStep::Kind::Stop:
            return stop(step.station);
        }
        return { ExitDone, QString() };
    }

    /// Whether a motor may have been started.
    bool hasCommanded() const { return m_commanded; }

private:
    Failure get(const QVector<Target> &targets)
    {
        Failure failure { ExitDone, QString() };
        for (const Target &target : targets) {
            const auto values = m_session.read(target, &failure);
            if (!values)
                return failure;
            printValues(target, *values, m_options.line.json, m_names);
        }
        return { ExitDone, QString() };
    }

    Failure wait(host::Duration span)
    {
        const host::Duration end = m_session.line().now() + span;
        while (!shouldEnd() && m_session.line().now() < end) {
            m_session.giveWayIfAsked();
            pauseFor(std::min(longestPause, end - m_session.line().now()));
        }
        return shouldEnd() ? Failure { ExitInterrupted, QStringLiteral("interrupted") }
                           : Failure { ExitDone, QString() };
    }

    Failure stop(int station)
    {
        const quint16 word = m_options.line.plant.stop.controlWord.value_or(stopWord);
        Failure failure = writeAndPrint(m_session, { station, QStringLiteral("CW"), 0, 1 },
                                        { word }, {}, m_names);
        m_commanded = m_commanded || failure.code != ExitDone;
        return failure;
    }

    Session &m_session;
    const Options &m_options;
    const RegisterNames &m_names;
    bool m_commanded = false;
};

/// Stops of the stations that the file commands or stops.
SessionWishes wishesOf(const QVector<BatchStep> &steps, const Options &options)
{
    SessionWishes wishes;
    host::StopPolicy stop = options.line.plant.stop;
    QVector<Setting> stopped;
    QVector<Setting> commanded;
    for (const BatchStep &step : steps) {
        const Target command { step.station, QStringLiteral("CW"), 0, 1 };
        if (step.kind == BatchStep::Kind::Stop)
            stopped.append(Setting { command, {} });
        else if (step.kind == BatchStep::Kind::Set)
            commanded.append(step.setting);
    }
    addStops(commanded, stop, &wishes);
    stop.controlWord = stop.controlWord.value_or(stopWord);
    addStops(stopped, stop, &wishes);
    return wishes;
}

/// Makes the steps. @return the first failure, its text told
Failure playAll(Play &play, const QVector<BatchStep> &steps, const Options &options, bool *isWhole)
{
    Failure first { ExitDone, QString() };
    *isWhole = false;
    for (const BatchStep &step : steps) {
        Failure failure = shouldEnd() ? Failure { ExitInterrupted, QStringLiteral("interrupted") }
                                      : play.make(step);
        if (failure.code == ExitDone)
            continue;
        failure.text = host::ConfigError { step.line, failure.text }.in(options.files.constFirst());
        complain(failure);
        if (first.code == ExitDone)
            first = failure;
        if (failure.code == ExitInterrupted || !options.keepGoing)
            return failure.code == ExitInterrupted ? failure : first;
    }
    *isWhole = !shouldEnd();
    return first;
}

int runBatch(const Options &options)
{
    Failure failure;
    const auto editor = loadDriver(options.line.driver, &failure);
    const auto text = editor ? contentOf(options.files.constFirst(), &failure) : std::nullopt;
    if (!text)
        return complain(failure);
    // All of it is looked at before anything is sent.
    QVector<host::ConfigError> errors;
    const auto steps = parseBatch(*text, options.line, editor->api(), &errors);
    for (const host::ConfigError &error : std::as_const(errors))
        complain({ ExitUsage, error.in(options.files.constFirst()) });
    if (!steps)
        return ExitUsage;
    const auto session = Session::open(options.line, &failure, wishesOf(*steps, options));
    if (!session)
        return complain(failure);
    const RegisterNames names(options.line.plant, editor->api(), options.names);
    Play play(*session, options, names);
    bool isWhole = false;
    failure = playAll(play, *steps, options, &isWhole);
    if (isWhole)
        return failure.code;
    // What the rest of the file would have done to a motor is not done.
    const bool stopped = (!interrupted() && !play.hasCommanded()) || session->stopSafely();
    return stopped ? failure.code : ExitFailed;
}

} // namespace

void describeBatch(Command &command)
{
    Options &options = command.action(runBatch);
    command.words("file", options.files, "one command a line; - for standard input", anyFile, true,
                  1);
    command.flag("--keep-going", options.keepGoing, "go on behind a command that failed");
    command.flag("--always", options.manner.always,
                 "write parameters also where they are held already");
    command.flag("--verify", options.manner.readBack, "read parameters back and compare");
    command.flag("--names", options.names, "with names and units of the simulated inverter");
    addLineOptions(command, options.line);
    command.remark(
        "Commands are set, get, wait MS and stop [STATION]; # begins a comment. Ended by a\n"
        "signal, or by a failure behind a CW, it sends the stop of the configuration.");
    command.example("dx4 batch --port /dev/ttyUSB0 start.txt",
                    "with lines such as set FRE 3000, set CW 1, wait 500, stop");
}

} // namespace dx4::cli
