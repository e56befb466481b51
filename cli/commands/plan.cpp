// SPDX-License-Identifier: MIT
// dx4 plan: the blocks that polling would take.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/line/watch_plan.h"
#include "cli/registers/value_output.h"
#include "host/base/length.h"

#include <QJsonArray>

namespace dx4::cli {
namespace {

constexpr int frameBytes = 13; // request and what a reply has besides its registers

struct Options {
    LineOptions line;
    QStringList words;
    int turnaround = 5; ///< ms
    bool names = false;
};

double inMilliseconds(host::Duration span)
{
    return static_cast<double>(span.count()) / 1000.0;
}

QString millisecondsText(host::Duration span)
{
    return QString::number(inMilliseconds(span), 'f', 1);
}

void printAsJson(const host::Plan &plan, const host::LineSettings &line, host::Duration cycle,
                 const RegisterNames &names)
{
    for (const KEY_ADDRESS &block : plan.blocks) {
        const QStringList known =
            names.namesIn(block.station, block.regType, block.address, block.count);
        const double wire = inMilliseconds(line.wireTime(frameBytes + 2 * block.count));
        printJson(
            registerFacts(block.station, block.regType, block.address)
            + Facts { { "count", block.count },
                      { "wireMs", wire },
                      { "names", valueIf(!known.isEmpty(), QJsonArray::fromStringList(known)) } });
    }
    printJson({ { "blocks", host::lengthOf(plan.blocks) },
                { "registers", plan.wantedRegisters },
                { "cycleMs", inMilliseconds(cycle) } });
}

void printAsTable(const host::Plan &plan, const host::LineSettings &line, host::Duration cycle,
                  const RegisterNames &names)
{
    const auto numbersOf = [&line](const KEY_ADDRESS &block) -> QStringList {
        return { QString::number(block.count),
                 millisecondsText(line.wireTime(frameBytes + 2 * block.count)) };
    };
    printLines(blockLines(plan, { QStringLiteral("Registers"), QStringLiteral("Wire ms") },
                          numbersOf, names));
    printLine(QString());
    printLine(filled("%1 in %2", counted(plan.wantedRegisters, "register", "registers"),
                     counted(plan.blocks.size(), "block", "blocks")));
    printLine(filled("one round takes %1 ms", millisecondsText(cycle)));
}

int runPlan(const Options &options)
{
    Failure failure;
    const auto plan =
        makePlan(wordsOrConfigured(options.words, options.line), options.line, &failure);
    if (!plan)
        return complain(failure);
    const auto editor = loadDriver(options.line.driver, &failure);
    if (!editor)
        return complain(failure);
    const RegisterNames names(options.line.plant, editor->api(), options.names);
    const host::LineSettings &line = options.line.plant.line;
    const host::Duration cycle =
        roundTime(*plan, options.line.plant, std::chrono::milliseconds(options.turnaround));
    if (options.line.json)
        printAsJson(*plan, line, cycle, names);
    else
        printAsTable(*plan, line, cycle, names);
    return ExitDone;
}

} // namespace

void describePlan(Command &command)
{
    Options &options = command.action(runPlan);
    command.words("address", options.words, "registers, such as F c.13 D 0-9 2:SW",
                  readableRegister, false);
    command.number("--turnaround", options.turnaround, "ms from request to reply", 0, 10000);
    command.flag("--names", options.names, "with names of the simulated inverter");
    addLineOptions(command, options.line);
    command.example("dx4 plan --speed 19200 D 0-9 SW FU 2:D 0-9", "two stations at 19200 bit/s");
}

} // namespace dx4::cli
