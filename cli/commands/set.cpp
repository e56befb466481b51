// SPDX-License-Identifier: MIT
// dx4 set: writes registers once.
#include "cli/commands/set.h"

#include "cli/driver_file.h"
#include "cli/session.h"
#include "cli/value_output.h"
#include "cli/values.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words;
    bool names = false;
};

int runSet(const Options &options)
{
    const QString name = QStringLiteral("set");
    Failure failure;
    const auto editor = loadDriver(options.line.driver, host::Plugin::Instance::Shared, &failure);
    if (!editor)
        return complain(name, failure);
    const auto setting = parseSetting(options.words, options.line.station, editor->api(), &failure);
    if (!setting)
        return complain(name, failure);
    const auto session = Session::open(options.line, &failure);
    if (!session || !session->write(setting->target, setting->values, &failure))
        return complain(name, failure);
    printValues(setting->target, setting->values, options.line.json, options.names,
                QStringLiteral("confirmed"));
    return ExitDone;
}

} // namespace

void addSet(CommandLine &line)
{
    Command command = line.add("set", "write registers once");
    const auto options = std::make_shared<Options>();
    command.words("address", options->words, "address and values, such as F 8.2 20 15");
    command.flag("--names", options->names, "with names and units of the simulated inverter");
    addLineOptions(command, options->line, QStringLiteral("set"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 F 8.2 20 15"),
                    QStringLiteral("both ramps in one request"));
    command.example(QStringLiteral("dx4 set --port /dev/ttyUSB0 FRE 3000"),
                    QStringLiteral("set frequency 30.00 Hz"));
    command.action([options] { return runSet(*options); });
}

} // namespace dx4::cli
