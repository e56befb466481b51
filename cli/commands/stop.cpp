// SPDX-License-Identifier: MIT
// dx4 stop: stops the motor.
#include "cli/commands/stop.h"

#include "cli/register_names.h"
#include "cli/session.h"
#include "cli/value_output.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    int word = stopWord;
};

int runStop(const Options &options)
{
    const QString name = QStringLiteral("stop");
    Failure failure;
    const auto session = Session::open(options.line, &failure);
    if (!session)
        return complain(name, failure);
    const Target target { options.line.station, QStringLiteral("CW"), 0, 1 };
    const auto word = static_cast<quint16>(options.word);
    if (!session->write(target, { word }, &failure)) {
        failure.text += QStringLiteral("; the motor may still turn");
        return complain(name, failure);
    }
    printValues(target, { word }, options.line.json, true, QStringLiteral("confirmed"));
    return ExitDone;
}

} // namespace

void addStop(CommandLine &line)
{
    Command command = line.add("stop", "stop the motor");
    const auto options = std::make_shared<Options>();
    command.number("--word", options->word, "control word of a drive with other bits", 0, 65535);
    addLineOptions(command, options->line, QStringLiteral("stop"));
    command.example(QStringLiteral("dx4 stop --port /dev/ttyUSB0"),
                    QStringLiteral("station 1 ramps down"));
    command.action([options] { return runStop(*options); });
}

} // namespace dx4::cli
