// SPDX-License-Identifier: MIT
// dx4 plan: the blocks that polling would take.
#include "cli/commands/plan.h"

#include "cli/output.h"
#include "cli/value_output.h"
#include "cli/watch_plan.h"
#include "host/length.h"
#include "host/notation.h"

namespace dx4::cli {
namespace {

constexpr int frameBytes = 13; // request and what a reply has besides its registers

struct Options {
    LineOptions line;
    QStringList words;
    int turnaround = 5; ///< ms
};

double inMilliseconds(host::Duration span)
{
    return static_cast<double>(span.count()) / 1000.0;
}

QString millisecondsText(host::Duration span)
{
    return QString::number(inMilliseconds(span), 'f', 1);
}

void printAsJson(const host::Plan &plan, const host::LineSettings &line, host::Duration cycle)
{
    for (const KEY_ADDRESS &block : plan.blocks) {
        QJsonObject object = registerJson(block.station, block.regType, block.address);
        object.insert(QStringLiteral("count"), block.count);
        object.insert(QStringLiteral("wireMs"),
                      inMilliseconds(line.wireTime(frameBytes + 2 * block.count)));
        printJson(object);
    }
    printJson({ { QStringLiteral("blocks"), host::lengthOf(plan.blocks) },
                { QStringLiteral("registers"), plan.wantedRegisters },
                { QStringLiteral("separators"), plan.separators },
                { QStringLiteral("cycleMs"), inMilliseconds(cycle) } });
}

void printAsTable(const host::Plan &plan, const host::LineSettings &line, host::Duration cycle)
{
    QVector<QStringList> rows { { QStringLiteral("Station"), QStringLiteral("From"),
                                  QStringLiteral("To"), QStringLiteral("Registers"),
                                  QStringLiteral("Wire ms") } };
    for (const KEY_ADDRESS &block : plan.blocks) {
        rows.append({ QString::number(block.station),
                      host::fullAddress(block.regType, block.address),
                      host::fullAddress(block.regType, block.address + block.count - 1),
                      QString::number(block.count),
                      millisecondsText(line.wireTime(frameBytes + 2 * block.count)) });
    }
    printLines(columns(rows, { 0, 3, 4 }));
    printLine(QString());
    printLine(QStringLiteral("%1 registers in %2 blocks, %3 more to keep stations apart")
                  .arg(plan.wantedRegisters)
                  .arg(plan.blocks.size())
                  .arg(plan.separators));
    printLine(QStringLiteral("one round takes %1 ms").arg(millisecondsText(cycle)));
}

int runPlan(const Options &options)
{
    Failure failure;
    const auto plan =
        makePlan(wordsOrConfigured(options.words, options.line), options.line, &failure);
    if (!plan)
        return complain(QStringLiteral("plan"), failure);
    const host::LineSettings line = lineSettings(options.line);
    const host::Duration cycle =
        host::cycleTime(*plan, line, std::chrono::milliseconds(options.turnaround));
    if (options.line.json)
        printAsJson(*plan, line, cycle);
    else
        printAsTable(*plan, line, cycle);
    return ExitDone;
}

} // namespace

void addPlan(CommandLine &line)
{
    Command command = line.add("plan", "show the blocks and the time that polling takes");
    const auto options = std::make_shared<Options>();
    command.words("address", options->words, "registers, such as F c.13 D 0-9 2:SW", false);
    command.number("--turnaround", options->turnaround, "ms from request to reply", 0, 10000);
    addLineOptions(command, options->line, QStringLiteral("plan"));
    command.example(QStringLiteral("dx4 plan --speed 19200 D 0-9 SW FU 2:D 0-9"),
                    QStringLiteral("two stations at 19200 bit/s"));
    command.action([options] { return runPlan(*options); });
}

} // namespace dx4::cli
