// SPDX-License-Identifier: MIT
// The polling that a user's addresses lead to.
#include "cli/line/watch_plan.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/registers/target.h"
#include "host/base/length.h"
#include "host/link/notation.h"

namespace dx4::cli {

QStringList wordsOrConfigured(const QStringList &words, const LineOptions &options)
{
    return words.isEmpty() ? options.registers : words;
}

Failure noRegisters()
{
    return { ExitUsage,
             QStringLiteral(
                 "no registers; name some, such as F c.13 D 0-9, or a file with --config") };
}

bool checkConfigured(const QStringList &words, const LineOptions &options,
                     const host::DriverApi &api, Failure *failure)
{
    if (words != options.registers)
        return true;
    for (const host::StationConfig &station : options.plant.stations) {
        for (const host::RegisterConfig &entry : station.registers) {
            if (parseTargets({ entry.at }, station.address, ReadAccess, api, failure))
                continue;
            failure->text = host::ConfigError { entry.line, failure->text }.in(options.config);
            return false;
        }
    }
    return true;
}

std::optional<host::Plan> makePlan(const QStringList &words, const LineOptions &options,
                                   Failure *failure)
{
    if (words.isEmpty()) {
        *failure = noRegisters();
        return std::nullopt;
    }
    auto editor = loadDriver(options.driver, failure);
    if (!editor)
        return std::nullopt;
    if (!checkConfigured(words, options, editor->api(), failure))
        return std::nullopt;
    // Asked here first, because it names the nearest valid word.
    if (!parseTargets(words, usualStation(options), ReadAccess, editor->api(), failure))
        return std::nullopt;
    const auto texts = splitTargets(words, usualStation(options), failure);
    QVector<host::PlanEntry> entries;
    for (const TargetText &text : *texts)
        entries.append({ text.station, text.text });
    QString error;
    auto plan = host::Planner(std::move(editor), options.plant.link).make(entries, &error);
    if (!plan)
        *failure = { ExitUsage, error };
    return plan;
}

host::Duration roundTime(const host::Plan &plan, const host::Config &plant,
                         host::Duration turnaround)
{
    host::Duration sum = host::cycleTime(plan, plant.line, turnaround);
    for (const KEY_ADDRESS &block : plan.blocks) {
        for (const host::StationConfig &station : plant.stations) {
            if (station.address == block.station)
                sum += station.extraGap;
        }
    }
    return sum;
}

QStringList blockLines(const host::Plan &plan, const QStringList &heads,
                       const std::function<QStringList(const KEY_ADDRESS &)> &numbersOf,
                       const RegisterNames &names)
{
    QVector<QStringList> rows { QStringList { QStringLiteral("Station"), QStringLiteral("From"),
                                              QStringLiteral("To") }
                                + heads };
    for (const KEY_ADDRESS &block : plan.blocks)
        rows.append(
            QStringList { QString::number(block.station),
                          host::fullAddress(block.regType, block.address),
                          host::fullAddress(block.regType, block.address + block.count - 1) }
            + numbersOf(block));
    QVector<int> numbers { 0 };
    for (int i = 0; i < host::lengthOf(heads); ++i)
        numbers.append(3 + i);
    const QStringList table = columns(rows, numbers);
    const QString belowTheAddress(9, QLatin1Char(' '));
    QStringList lines { table.constFirst() };
    for (int i = 0; i < host::lengthOf(plan.blocks); ++i) {
        const KEY_ADDRESS &block = plan.blocks.at(i);
        lines << table.at(i + 1)
              << wrapped(names.namesIn(block.station, block.regType, block.address, block.count),
                         belowTheAddress);
    }
    return lines;
}

} // namespace dx4::cli
