// SPDX-License-Identifier: MIT
// dx4 run: sets a frequency and starts the motor.
#include "cli/commands/commands.h"

#include "cli/console/interrupt.h"
#include "cli/line/writing.h"
#include "cli/registers/register_names.h"
#include "host/base/number_text.h"

namespace dx4::cli {
namespace {

constexpr double highestFrequency = 655.35; // Hz, what a register holds

struct Options {
    LineOptions line;
    QString frequency;
    bool reverse = false;
    int word = -1; ///< control word; -1: the simulated inverter's own
};

host::Scaling frequencyScaling()
{
    return namedValue(1, QStringLiteral("FRE"), 0).scaling;
}

std::optional<quint16> parseFrequency(const QString &text, Failure *failure)
{
    const std::optional<double> hertz = host::parseDecimal(text);
    if (hertz && *hertz <= highestFrequency)
        return frequencyScaling().registerValue(*hertz);
    return refuse(failure,
                  filled("\"%1\" is no frequency; write 0 to 655.35 Hz, such as 30.00", text));
}

bool writeOne(Session &session, const QString &regType, quint16 value, const RegisterNames &names,
              Failure *failure)
{
    const Target target { session.options().station, regType, 0, 1 };
    *failure = writeAndPrint(session, target, { value }, {}, names);
    return failure->code == ExitDone;
}

/// Frequency and run command, for a station that was heard.
bool start(Session &session, const Options &options, std::optional<quint16> frequency,
           Failure *failure)
{
    const RegisterNames names(options.line.plant, session.runtime().link().api(), true);
    // The frequency goes first: a motor must not start towards a forgotten one.
    if (frequency && !writeOne(session, QStringLiteral("FRE"), *frequency, names, failure))
        return false;
    const quint16 own = options.reverse ? runReverseWord : runWord;
    const quint16 word = options.word < 0 ? own : static_cast<quint16>(options.word);
    return writeOne(session, QStringLiteral("CW"), word, names, failure);
}

int runRun(const Options &options)
{
    Failure failure;
    std::optional<quint16> frequency;
    if (!options.frequency.isEmpty()) {
        frequency = parseFrequency(options.frequency, &failure);
        if (!frequency)
            return complain(failure);
    }
    if (!mayDrive(options.line, options.line.station, &failure))
        return complain(failure);
    SessionWishes wishes;
    if (options.line.plant.stop.controlWord)
        wishes.stops.append({ options.line.station, *options.line.plant.stop.controlWord });
    const auto session = Session::open(options.line, &failure, wishes);
    if (!session || !session->hear(options.line.station, &failure))
        return complain(failure);
    if (start(*session, options, frequency, &failure) && !interrupted())
        return ExitDone;
    // Interrupted, or not confirmed: it may have been heard all the same.
    const bool stopped = session->stopSafely();
    const int exitCode = interrupted() ? ExitInterrupted : complain(failure);
    return stopped ? exitCode : ExitFailed;
}

} // namespace

void describeRun(Command &command)
{
    Options &options = command.action(runRun);
    command.text("--frequency", options.frequency, "to run at; else the last one set", "HZ");
    command.flag("--reverse", options.reverse, "turn the other way");
    command.number("--word", options.word, "control word of a drive with other bits", 0, 65535);
    command.excludes("--reverse", "--word");
    addLineOptions(command, options.line);
    command.example("dx4 run --port /dev/ttyUSB0 --frequency 30.00", "station 1 runs at 30 Hz");
}

} // namespace dx4::cli
