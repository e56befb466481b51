// SPDX-License-Identifier: MIT
// dx4 get: reads registers once.
#include "cli/commands/commands.h"

#include "cli/console/interrupt.h"
#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/line/session.h"
#include "cli/line/watch_plan.h"
#include "cli/registers/reply_text.h"
#include "cli/registers/value_output.h"
#include "cli/registers/values.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words;
    int count = 0; ///< 0: as the addresses say
    PairOptions pair;
    bool names = false;
};

void printFailure(const Session &session, const Target &target, const Failure &failure)
{
    complain(failure);
    if (!session.options().json)
        return;
    const bool isLine = failure.code == ExitLine;
    printJson(registerFacts(target.station, target.regType, target.address)
              + Facts { { "error",
                          isLine ? QStringLiteral("line") : causeName(session.verdict().cause) } });
}

int readAll(Session &session, const QVector<Target> &targets, const RegisterNames &names,
            const Pair &pair)
{
    int exitCode = ExitDone;
    for (const Target &target : targets) {
        Failure failure;
        const auto values = session.read(target, &failure);
        if (values) {
            printValues(target, *values, session.options().json, names, pair);
            continue;
        }
        if (failure.code == ExitInterrupted && !interrupted())
            break; // the reader had enough
        printFailure(session, target, failure);
        exitCode = exitCode == ExitDone ? failure.code : exitCode;
        // What one station or register refuses says nothing about the next one.
        if (failure.code == ExitLine || failure.code == ExitInterrupted)
            break;
    }
    return exitCode;
}

int runGet(const Options &options)
{
    Failure failure;
    const auto editor = loadDriver(options.line.driver, &failure);
    if (!editor)
        return complain(failure);
    const QStringList words = wordsOrConfigured(options.words, options.line);
    if (words.isEmpty())
        return complain(noRegisters());
    if (!checkConfigured(words, options.line, editor->api(), &failure))
        return complain(failure);
    const auto targets = parseCounted(words, options.count, usualStation(options.line), ReadAccess,
                                      editor->api(), &failure);
    if (!targets)
        return complain(failure);
    LineOptions line = options.line;
    const auto pair = pairOf(options.pair, &line.plant.link, &failure);
    if (!pair || !arePairs(*targets, *pair, &failure))
        return complain(failure);
    const auto session = Session::open(line, &failure);
    if (!session)
        return complain(failure);
    const RegisterNames names(options.line.plant, editor->api(), options.names);
    return readAll(*session, *targets, names, *pair);
}

} // namespace

void describeGet(Command &command)
{
    Options &options = command.action(runGet);
    command.words("address", options.words, "registers, such as F c.13 D 0-9 2:SW",
                  readableRegister, false);
    command.number("--count", options.count, "registers from one address on", 1, 123);
    command.flag("--names", options.names, "with names and units of the simulated inverter");
    addPairOptions(command, options.pair);
    addLineOptions(command, options.line);
    command.example("dx4 get --port /dev/ttyUSB0 F 8.2-8.3 D 4",
                    "both ramps and a monitor value of station 1");
    command.example("dx4 get --port /dev/ttyUSB0 --json 2:SW 2:FU",
                    "status and fault of station 2, for a script");
    command.example("dx4 get --port /dev/ttyUSB0 --trace SW",
                    "with the frames that pass, in bytes and in words");
    command.example("dx4 get --port /dev/ttyUSB0 --as u32 --order low D 12-13",
                    "two registers as one number, its low half first");
    command.example("dx4 get --port /dev/ttyUSB0 @0x2000 @0xD000-0xD003",
                    "Modbus registers, as the types that cover them");
}

} // namespace dx4::cli
