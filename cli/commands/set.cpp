// SPDX-License-Identifier: MIT
// dx4 set: writes registers once.
#include "cli/commands/set.h"

#include "cli/line/driver_file.h"
#include "cli/line/writing.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words;
    WriteManner manner;
    bool names = false;
};

int runSet(const Options &options)
{
    const QString name = QStringLiteral("set");
    Failure failure;
    const auto editor = loadDriver(options.line.driver, host::Plugin::Instance::Shared, &failure);
    if (!editor)
        return complain(name, failure);
    const auto settings = parseSettings(options.words, usualStation(options.line),
                                        options.line.plant, editor->api(), &failure);
    if (!settings || !mayDriveAll(options.line, *settings, &failure))
        return complain(name, failure);
    SessionWishes wishes;
    addStops(*settings, options.line.plant.stop, &wishes);
    const auto session = Session::open(options.line, &failure, wishes);
    if (!session)
        return complain(name, failure);
    const RegisterNames names(options.line.plant, editor->api(), options.names);
    bool isCommanded = false; // what was written may have started a motor
    for (const Setting &setting : *settings) {
        failure = writeSetting(*session, setting, options.manner, names, &isCommanded);
        if (failure.code != ExitDone)
            break;
    }
    if (failure.code == ExitDone)
        return ExitDone;
    // The drive may have heard what it did not confirm, and the rest of the settings is not made.
    const bool stopped = !isCommanded || session->stopSafely();
    const int exitCode = complain(name, failure);
    return stopped ? exitCode : ExitFailed;
}

} // namespace

void addSet(CommandLine &line)
{
    Command command = line.add("set", "write registers once");
    const auto options = std::make_shared<Options>();
    command.words("address", options->words,
                  "address and values, such as F 8.2 20 15, or name=value");
    command.flag("--always", options->manner.always,
                 "write parameters also where they are held already");
    command.flag("--verify", options->manner.readBack, "read parameters back and compare");
    command.flag("--names", options->names, "with names and units of the simulated inverter");
    addLineOptions(command, options->line, QStringLiteral("set"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 F 8.2 20 15"),
                    QStringLiteral("both ramps in one request"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 FRE 3000"),
                    QStringLiteral("set frequency 30.00 Hz"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 \"FRE 3000\" \"F 8.2 20\""),
                    QStringLiteral("one after the other; the first that fails is the last"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 --verify F c.13 0x04D2"),
                    QStringLiteral("read back; 8 where the station holds another value"));
    command.action([options] { return runSet(*options); });
}

} // namespace dx4::cli
