// SPDX-License-Identifier: MIT
// dx4 set: writes registers once.
#include "cli/commands/set.h"

#include "cli/driver_file.h"
#include "cli/session.h"
#include "cli/values.h"
#include "cli/write_output.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words;
    WriteManner manner;
    bool names = false;
};

/// A command starts a motor: the station must have been heard. A stop goes out at once.
bool needsAnswer(const Setting &setting, const host::StopPolicy &stop)
{
    return setting.target.regType == QLatin1String("CW")
        && setting.values.constFirst() != stop.controlWord;
}

int runSet(const Options &options)
{
    const QString name = QStringLiteral("set");
    Failure failure;
    const auto editor = loadDriver(options.line.driver, host::Plugin::Instance::Shared, &failure);
    if (!editor)
        return complain(name, failure);
    const auto setting =
        parseSetting(options.words, usualStation(options.line), editor->api(), &failure);
    if (!setting || !mayDrive(options.line, setting->target.station, &failure))
        return complain(name, failure);
    SessionWishes wishes;
    const int station = setting->target.station;
    if (options.line.plant.stop.controlWord)
        wishes.stops.append({ station, *options.line.plant.stop.controlWord });
    const auto session = Session::open(options.line, &failure, wishes);
    if (!session)
        return complain(name, failure);
    if (needsAnswer(*setting, options.line.plant.stop) && !session->hear(station, &failure))
        return complain(name, failure);
    failure = { ExitDone, QString() };
    const auto results = session->write(setting->target, setting->values, options.manner, &failure);
    printResults(results, setting->target, setting->values, options.line.json,
                 RegisterNames(options.line.plant, editor->api(), options.names));
    if (failure.code == ExitDone)
        return ExitDone;
    bool stopped = true;
    if (setting->target.regType == QLatin1String("CW") && failure.code != ExitUsage)
        stopped = session->stopSafely(); // the drive may have heard what it did not confirm
    const int exitCode = complain(name, failure);
    return stopped ? exitCode : ExitFailed;
}

} // namespace

void addSet(CommandLine &line)
{
    Command command = line.add("set", "write registers once");
    const auto options = std::make_shared<Options>();
    command.words("address", options->words, "address and values, such as F 8.2 20 15");
    command.flag("--always", options->manner.always,
                 "write parameters also where they are held already");
    command.flag("--verify", options->manner.readBack, "read parameters back and compare");
    command.flag("--names", options->names, "with names and units of the simulated inverter");
    addLineOptions(command, options->line, QStringLiteral("set"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 F 8.2 20 15"),
                    QStringLiteral("both ramps in one request"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 FRE 3000"),
                    QStringLiteral("set frequency 30.00 Hz"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 --verify F c.13 0x04D2"),
                    QStringLiteral("read back; 8 where the station holds another value"));
    command.action([options] { return runSet(*options); });
}

} // namespace dx4::cli
