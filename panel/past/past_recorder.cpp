// SPDX-License-Identifier: MIT
// Keeps what a line shows, so that the time before a fault can be looked at after it.
#include "panel/past/past_recorder.h"

#include "host/base/length.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace dx4::panel {
namespace {

/// What lies further back belongs to no fault any more, also where look() comes late.
constexpr journal::Time heldFor = pastBefore + pastAfter + 5'000;
constexpr int mostLines = 1000;

/// What was known of a register at a later time, if nothing changed.
PastChange movedTo(PastChange change, journal::Time at)
{
    change.state.age += std::chrono::milliseconds(at - change.time);
    change.time = at;
    return change;
}

} // namespace

PastRecorder::PastRecorder(std::function<QDateTime()> utc, QObject *parent)
    : QObject(parent)
    , m_utc(std::move(utc))
    , m_from(now())
{
}

journal::Time PastRecorder::now() const
{
    return m_utc().toMSecsSinceEpoch();
}

void PastRecorder::follow(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::valuesChanged, this, &PastRecorder::noteValues);
    connect(&service, &LineService::lineOpened, this, [this] { noteLine({}); });
    connect(&service, &LineService::lineWentDown, this, &PastRecorder::noteLine);
}

int PastRecorder::placeOf(const host::RegisterValue &value)
{
    const auto [found, isNew] = m_places.emplace(
        std::make_tuple(value.station, value.regType, value.address), host::lengthOf(m_registers));
    if (isNew) {
        m_registers.append(
            { value.station, value.regType, value.address, value.name, value.scaling });
        PastChange unknown;
        unknown.place = found->second;
        unknown.state.stale = true;
        m_base.append(unknown);
    }
    return found->second;
}

void PastRecorder::noteValues(const QVector<host::RegisterValue> &values)
{
    const journal::Time at = now();
    for (const host::RegisterValue &value : values)
        m_changes.push_back({ at, placeOf(value), value.state });
    while (host::lengthOf(m_changes) > mostChanges)
        forgetFirst();
    forgetOld();
}

void PastRecorder::noteLine(const QString &downReason)
{
    m_lines.push_back({ now(), downReason });
    if (host::lengthOf(m_lines) > mostLines)
        m_lines.pop_front();
}

void PastRecorder::forgetFirst()
{
    m_from = m_changes.front().time;
    m_base[m_changes.front().place] = m_changes.front();
    m_changes.pop_front();
}

void PastRecorder::forgetOld()
{
    const journal::Time oldest = now() - heldFor;
    while (!m_changes.empty() && m_changes.front().time < oldest)
        forgetFirst();
    m_from = std::max(m_from, oldest);
    // The last one before says how the line was at the beginning.
    while (m_lines.size() > 1 && m_lines[1].time < oldest)
        m_lines.pop_front();
}

void PastRecorder::begin(int station, int code)
{
    if (host::lengthOf(m_open) < mostOpen)
        m_open.append({ station, code, now() });
}

void PastRecorder::look()
{
    const QVector<Fault> open = std::exchange(m_open, {});
    for (const Fault &fault : open) {
        if (now() - fault.at < pastAfter)
            m_open.append(fault);
        else
            Q_EMIT completed(recordOf(fault));
    }
    forgetOld();
}

PastRecord PastRecorder::recordOf(const Fault &fault) const
{
    PastRecord record;
    record.faultAt = fault.at;
    record.station = fault.station;
    record.code = fault.code;
    record.from = std::max(m_from, fault.at - pastBefore);
    record.to = fault.at + pastAfter;
    record.registers = m_registers;
    QVector<PastChange> first = m_base;
    QVector<PastChange> later;
    for (const PastChange &change : m_changes) {
        if (change.time <= record.from)
            first[change.place] = change;
        else if (change.time <= record.to)
            later.append(change);
    }
    for (const PastChange &change : std::as_const(first)) {
        if (change.state.known)
            record.changes.append(movedTo(change, record.from));
    }
    record.changes += later;
    for (const PastLine &line : m_lines) {
        if (line.time <= record.to)
            record.line.append({ std::max(line.time, record.from), line.downReason });
    }
    return record;
}

} // namespace dx4::panel
