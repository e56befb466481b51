// SPDX-License-Identifier: MIT
// How far a scan has come, kept in a file between two runs.
#include "cli/line/scan_state.h"

#include "cli/console/output.h"
#include "cli/registers/target.h"
#include "host/base/whole_file.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <utility>

namespace dx4::cli {
namespace {

bool isPossible(const ScanState &state)
{
    const bool placed = state.from >= 1 && state.from <= state.to && state.to <= lastStation
        && state.from <= state.next && state.next <= state.to + 1;
    return placed && std::all_of(state.found.cbegin(), state.found.cend(), [&](int station) {
               return station >= state.from && station < state.next;
           });
}

} // namespace

std::optional<ScanState> loadScanState(const QString &file)
{
    return parseScanState(host::readWholeFile(file, nullptr).value_or(QByteArray()));
}

std::optional<ScanState> parseScanState(const QByteArray &text)
{
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    if (!object.contains(QStringLiteral("next")))
        return std::nullopt;
    ScanState state;
    state.from = object.value(QStringLiteral("from")).toInt(state.from);
    state.to = object.value(QStringLiteral("to")).toInt(state.to);
    state.next = object.value(QStringLiteral("next")).toInt();
    const QJsonArray found = object.value(QStringLiteral("found")).toArray();
    for (const QJsonValue &station : found)
        state.found.append(station.toInt());
    return isPossible(state) ? std::optional(state) : std::nullopt;
}

bool goesOn(const ScanState &state, int from, int to)
{
    return state.from == from && state.to <= to;
}

bool saveScanState(const QString &file, const ScanState &state, QString *error)
{
    QJsonArray found;
    for (const int station : state.found)
        found.append(station);
    const QString text = jsonText(jsonOf({ { "from", state.from },
                                           { "to", state.to },
                                           { "next", state.next },
                                           { "found", found } }));
    return host::replaceFile(file, text.toUtf8() + '\n', error);
}

ScanKeeper::ScanKeeper(QString file)
    : m_file(std::move(file))
{
}

void ScanKeeper::keep(const ScanState &state)
{
    QString error;
    if (m_file.isEmpty() || m_failed || saveScanState(m_file, state, &error))
        return;
    m_failed = true;
    note(filled("the state is not kept: %1", error));
}

void ScanKeeper::drop()
{
    QFile file(m_file);
    if (m_file.isEmpty() || !file.exists() || file.remove())
        return;
    m_failed = true;
    note(filled("%1 cannot be removed, and the scan is through: %2", m_file, file.errorString()));
}

} // namespace dx4::cli
