// SPDX-License-Identifier: MIT
// The polling that a user's addresses lead to.
#include "cli/watch_plan.h"

#include "cli/driver_file.h"
#include "cli/target.h"

namespace dx4::cli {

QStringList wordsOrConfigured(const QStringList &words, const LineOptions &options)
{
    return words.isEmpty() ? options.registers : words;
}

std::optional<host::Plan> makePlan(const QStringList &words, const LineOptions &options,
                                   Failure *failure)
{
    if (words.isEmpty()) {
        *failure = { ExitUsage,
                     QStringLiteral("no registers; name some, such as F c.13 D 0-9, or a file with "
                                    "--config") };
        return std::nullopt;
    }
    auto scratch = loadDriver(options.driver, host::Plugin::Instance::PrivateCopy, failure);
    if (!scratch)
        return std::nullopt;
    // Asked here first, because it names the nearest valid word.
    if (!parseTargets(words, options.station, ReadAccess, scratch->api(), failure))
        return std::nullopt;
    const auto texts = splitTargets(words, options.station, failure);
    QVector<host::PlanEntry> entries;
    for (const TargetText &text : *texts)
        entries.append({ text.station, text.text });
    QString error;
    auto plan = host::Planner(std::move(scratch), linkSettings(options)).make(entries, &error);
    if (!plan)
        *failure = { ExitUsage, error };
    return plan;
}

} // namespace dx4::cli
