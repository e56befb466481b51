// SPDX-License-Identifier: MIT
// dx4 run: sets a frequency and starts the motor.
#include "cli/commands/run.h"

#include "cli/register_names.h"
#include "cli/session.h"
#include "cli/value_output.h"

namespace dx4::cli {
namespace {

constexpr double highestFrequency = 655.35; // Hz, what a register holds

struct Options {
    LineOptions line;
    QString frequency;
    bool reverse = false;
    int word = -1; ///< control word; -1: the simulated inverter's own
};

std::optional<quint16> parseFrequency(const QString &text, Failure *failure)
{
    bool isNumber = false;
    const double hertz = text.toDouble(&isNumber);
    if (isNumber && hertz >= 0 && hertz <= highestFrequency)
        return static_cast<quint16>(qRound(hertz * 100));
    *failure = {
        ExitUsage,
        QStringLiteral("\"%1\" is no frequency; write 0 to 655.35 Hz, such as 30.00").arg(text)
    };
    return std::nullopt;
}

bool writeOne(Session &session, const QString &regType, quint16 value, Failure *failure)
{
    const Target target { session.options().station, regType, 0, 1 };
    if (!session.write(target, { value }, failure))
        return false;
    printValues(target, { value }, session.options().json, true, QStringLiteral("confirmed"));
    return true;
}

int runRun(const Options &options)
{
    const QString name = QStringLiteral("run");
    Failure failure;
    std::optional<quint16> frequency;
    if (!options.frequency.isEmpty()) {
        frequency = parseFrequency(options.frequency, &failure);
        if (!frequency)
            return complain(name, failure);
    }
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(name, failure);
    // The frequency goes first: a motor must not start towards a forgotten one.
    if (frequency && !writeOne(*session, QStringLiteral("FRE"), *frequency, &failure))
        return complain(name, failure);
    const quint16 own = options.reverse ? runReverseWord : runWord;
    const quint16 word = options.word < 0 ? own : static_cast<quint16>(options.word);
    if (!writeOne(*session, QStringLiteral("CW"), word, &failure))
        return complain(name, failure);
    return ExitDone;
}

} // namespace

void addRun(CommandLine &line)
{
    Command command = line.add("run", "set a frequency and start the motor");
    const auto options = std::make_shared<Options>();
    command.text("--frequency", options->frequency, "to run at; else the last one set", "HZ");
    command.flag("--reverse", options->reverse, "turn the other way");
    command.number("--word", options->word, "control word of a drive with other bits", 0, 65535);
    addLineOptions(command, options->line, QStringLiteral("run"));
    command.example(QStringLiteral("dx4 run --port /dev/ttyUSB0 --frequency 30.00"),
                    QStringLiteral("station 1 runs at 30 Hz"));
    command.action([options] { return runRun(*options); });
}

} // namespace dx4::cli
