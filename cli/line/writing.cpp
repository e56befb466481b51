// SPDX-License-Identifier: MIT
// Settings written in a row, as the commands do that write.
#include "cli/line/writing.h"

#include <algorithm>

namespace dx4::cli {
namespace {

/// A command starts a motor: the station must have been heard. A stop goes out at once.
bool needsAnswer(const Setting &setting, const host::StopPolicy &stop)
{
    return setting.target.regType == QLatin1String("CW")
        && setting.values.constFirst() != stop.controlWord;
}

} // namespace

void addStops(const QVector<Setting> &settings, const host::StopPolicy &stop, SessionWishes *wishes)
{
    if (!stop.controlWord)
        return;
    for (const Setting &setting : settings) {
        const int station = setting.target.station;
        const bool isKnown =
            std::any_of(wishes->stops.cbegin(), wishes->stops.cend(),
                        [station](const auto &known) { return known.station == station; });
        if (!isKnown)
            wishes->stops.append({ station, *stop.controlWord });
    }
}

bool mayDriveAll(const LineOptions &options, const QVector<Setting> &settings, Failure *failure)
{
    return std::all_of(settings.cbegin(), settings.cend(), [&](const Setting &setting) {
        return mayDrive(options, setting.target.station, failure);
    });
}

Failure writeSetting(Session &session, const Setting &setting, const WriteManner &manner,
                     const RegisterNames &names, bool *commanded)
{
    Failure failure { ExitDone, QString() };
    const LineOptions &options = session.options();
    if (needsAnswer(setting, options.plant.stop) && !session.hear(setting.target.station, &failure))
        return failure;
    failure = { ExitDone, QString() };
    const auto results = session.write(setting.target, setting.values, manner, &failure);
    if (setting.target.regType == QLatin1String("CW") && failure.code != ExitUsage)
        *commanded = true;
    printResults(results, setting.target, setting.values, options.json, names);
    return failure;
}

} // namespace dx4::cli
