// SPDX-License-Identifier: MIT
// How far a scan has come, kept in a file between two runs.
#include "cli/scan_state.h"

#include "cli/output.h"
#include "cli/target.h"
#include "host/modbus_limits.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>

namespace dx4::cli {
namespace {

bool isPossible(const ScanState &state)
{
    const bool placed = state.next >= 1 && state.next <= host::lastStation + 1;
    return placed && std::all_of(state.found.cbegin(), state.found.cend(), [&](int station) {
               return station >= 1 && station < state.next;
           });
}

} // namespace

std::optional<ScanState> loadScanState(const QString &file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(source.readAll()).object();
    if (!object.contains(QStringLiteral("next")))
        return std::nullopt;
    ScanState state;
    state.next = object.value(QStringLiteral("next")).toInt();
    const QJsonArray found = object.value(QStringLiteral("found")).toArray();
    for (const QJsonValue &station : found)
        state.found.append(station.toInt());
    return isPossible(state) ? std::optional(state) : std::nullopt;
}

bool saveScanState(const QString &file, const ScanState &state)
{
    QJsonArray found;
    for (const int station : state.found)
        found.append(station);
    QSaveFile target(file);
    const QString text =
        jsonText({ { QStringLiteral("next"), state.next }, { QStringLiteral("found"), found } });
    return target.open(QIODevice::WriteOnly) && target.write(text.toUtf8() + '\n') > 0
        && target.commit();
}

} // namespace dx4::cli
