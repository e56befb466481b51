// SPDX-License-Identifier: MIT
// The polling that a user's addresses lead to.
#include "cli/line/watch_plan.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/registers/target.h"

namespace dx4::cli {

QStringList wordsOrConfigured(const QStringList &words, const LineOptions &options)
{
    return words.isEmpty() ? options.registers : words;
}

Failure noRegisters()
{
    return { ExitUsage,
             QStringLiteral("no registers; name some, such as F c.13 D 0-9, or a file with "
                            "--config") };
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
    auto scratch = loadDriver(options.driver, host::Plugin::Instance::PrivateCopy, failure);
    if (!scratch)
        return std::nullopt;
    if (!checkConfigured(words, options, scratch->api(), failure))
        return std::nullopt;
    // Asked here first, because it names the nearest valid word.
    if (!parseTargets(words, usualStation(options), ReadAccess, scratch->api(), failure))
        return std::nullopt;
    const auto texts = splitTargets(words, usualStation(options), failure);
    QVector<host::PlanEntry> entries;
    for (const TargetText &text : *texts)
        entries.append({ text.station, text.text });
    QString error;
    auto plan = host::Planner(std::move(scratch), options.plant.link).make(entries, &error);
    if (!plan)
        *failure = { ExitUsage, error };
    return plan;
}

QStringList blockNames(const KEY_ADDRESS &block, const RegisterNames &names)
{
    const QString belowTheAddress(9, QLatin1Char(' '));
    return wrapped(names.namesIn(block.station, block.regType, block.address, block.count),
                   belowTheAddress);
}

} // namespace dx4::cli
