// SPDX-License-Identifier: MIT
// dx4 stop: stops the motor.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/writing.h"
#include "cli/registers/register_names.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    int word = -1; ///< control word; -1: the configuration's, else the simulated inverter's
    bool all = false; ///< every station of the configuration
};

quint16 wordOf(const Options &options)
{
    if (options.word >= 0)
        return static_cast<quint16>(options.word);
    return options.line.plant.stop.controlWord.value_or(stopWord);
}

QVector<int> stationsOf(const Options &options)
{
    if (!options.all)
        return { options.line.station };
    QVector<int> stations;
    for (const host::StationConfig &station : options.line.plant.stations)
        stations.append(station.address);
    return stations;
}

Target commandOf(int station)
{
    return { station, QStringLiteral("CW"), 0, 1 };
}

RegisterNames namesOf(Session &session)
{
    return { session.options().plant, session.runtime().link().api(), true };
}

int stopOne(Session &session, int station, quint16 word)
{
    const Failure failure =
        writeAndPrint(session, commandOf(station), { word }, {}, namesOf(session));
    return failure.code == ExitDone ? ExitDone : complain(failure);
}

void printConfirmed(Session &session, int station, quint16 word)
{
    host::WriteOutcome confirmed;
    confirmed.id = host::safeStopTag;
    confirmed.sent = true;
    printResults({ { commandOf(station), confirmed } }, commandOf(station), { word },
                 session.options().json, namesOf(session));
}

/// One pass over all of them goes first, and those that confirmed it are told at once: none waits
/// for a station that does not answer. The others are asked once more, which says why.
int stopAll(Session &session, const QVector<int> &stations, quint16 word)
{
    const QVector<int> unconfirmed = session.stop().unconfirmed;
    for (const int station : stations) {
        if (!unconfirmed.contains(station))
            printConfirmed(session, station, word);
    }
    int stillTurning = 0;
    for (const int station : unconfirmed)
        stillTurning += stopOne(session, station, word) == ExitDone ? 0 : 1;
    if (stillTurning == 0)
        return ExitDone;
    return complain({ ExitFailed,
                      filled("STOP NOT CONFIRMED by %1 of %2", stillTurning,
                             counted(stations.size(), "station", "stations")) });
}

int runStop(const Options &options)
{
    const QVector<int> stations = stationsOf(options);
    if (stations.isEmpty())
        return complain(
            { ExitUsage, QStringLiteral("--all needs stations; name a file with --config") });
    Failure failure;
    if (!options.all && !mayDrive(options.line, options.line.station, &failure))
        return complain(failure);
    // The runtime lets a command through to a station that it has not heard only as a stop.
    LineOptions line = options.line;
    const quint16 word = wordOf(options);
    line.plant.stop.controlWord = word;
    if (options.word >= 0)
        line.given << QStringLiteral("--word") << QString::number(options.word);
    SessionWishes wishes;
    for (const int station : stations)
        wishes.stops.append({ station, word });
    const auto session = Session::open(line, &failure, wishes);
    if (!session)
        return complain(failure);
    const int exitCode = options.all ? stopAll(*session, stations, word)
                                     : stopOne(*session, stations.constFirst(), word);
    session->warnOfMotors();
    return exitCode;
}

} // namespace

void describeStop(Command &command)
{
    Options &options = command.action(runStop);
    command.number("--word", options.word, "control word of a drive with other bits", 0, 65535);
    command.flag("--all", options.all, "every station of the configuration");
    addLineOptions(command, options.line);
    command.excludes("--all", "--station");
    command.example("dx4 stop --port /dev/ttyUSB0", "station 1 ramps down");
}

} // namespace dx4::cli
