// SPDX-License-Identifier: MIT
// What the commands have in common that write.
#include "cli/line/writing.h"

#include "cli/registers/value_output.h"

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
    for (const Setting &setting : settings) {
        if (stop.controlWord)
            addStop(wishes->stops, { setting.target.station, *stop.controlWord });
    }
}

bool mayDriveAll(const LineOptions &options, const QVector<Setting> &settings, Failure *failure)
{
    return std::all_of(settings.cbegin(), settings.cend(), [&](const Setting &setting) {
        return mayDrive(options, setting.target.station, failure);
    });
}

void printResults(const QVector<WriteResult> &results, const Target &target,
                  const QVector<quint16> &values, bool json, const RegisterNames &names)
{
    for (const WriteResult &result : results) {
        const Target &piece = result.target;
        const QVector<quint16> written = values.mid(piece.address - target.address, piece.count);
        const QString outcome =
            result.outcome.sent ? QStringLiteral("confirmed") : QStringLiteral("held already");
        printValues(piece, written, json, names, {}, outcome, result.outcome.id);
    }
}

Failure writeAndPrint(Session &session, const Target &target, const QVector<quint16> &values,
                      const WriteManner &manner, const RegisterNames &names)
{
    Failure failure { ExitDone, QString() };
    const auto results = session.write(target, values, manner, &failure);
    printResults(results, target, values, session.options().json, names);
    return failure;
}

Failure writeSetting(Session &session, const Setting &setting, const WriteManner &manner,
                     const RegisterNames &names, bool *commanded)
{
    Failure failure { ExitDone, QString() };
    const Target &target = setting.target;
    if (needsAnswer(setting, session.options().plant.stop)
        && !session.hear(target.station, &failure))
        return failure;
    failure = writeAndPrint(session, target, setting.values, manner, names);
    if (target.regType == QLatin1String("CW") && failure.code != ExitUsage)
        *commanded = true;
    return failure;
}

} // namespace dx4::cli
