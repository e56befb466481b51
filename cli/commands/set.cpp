// SPDX-License-Identifier: MIT
// dx4 set: writes registers once.
#include "cli/commands/commands.h"

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
    Failure failure;
    const auto editor = loadDriver(options.line.driver, &failure);
    if (!editor)
        return complain(failure);
    const auto settings = parseSettings(options.words, usualStation(options.line),
                                        options.line.plant, editor->api(), &failure);
    if (!settings || !mayDriveAll(options.line, *settings, &failure))
        return complain(failure);
    SessionWishes wishes;
    addStops(*settings, options.line.plant.stop, &wishes);
    const auto session = Session::open(options.line, &failure, wishes);
    if (!session)
        return complain(failure);
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
    const int exitCode = complain(failure);
    return stopped ? exitCode : ExitFailed;
}

} // namespace

void describeSet(Command &command)
{
    Options &options = command.action(runSet);
    command.words("address", options.words,
                  "address and values, such as F 8.2 20 15, or name=value", writableRegister);
    command.flag("--always", options.manner.always,
                 "write parameters also where they are held already");
    command.flag("--verify", options.manner.readBack, "read parameters back and compare");
    command.flag("--names", options.names, "with names and units of the simulated inverter");
    addLineOptions(command, options.line);
    command.example("dx4 set --port /dev/ttyUSB0 F 8.2 20 15", "both ramps in one request");
    command.example("dx4 set --port /dev/ttyUSB0 FRE 3000", "set frequency 30.00 Hz");
    command.example("dx4 set --port /dev/ttyUSB0 \"FRE 3000\" \"F 8.2 20\"",
                    "one after the other; the first that fails is the last");
    command.example("dx4 set --port /dev/ttyUSB0 --verify F c.13 0x04D2",
                    "read back; 8 where the station holds another value");
}

} // namespace dx4::cli
