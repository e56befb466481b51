// SPDX-License-Identifier: MIT
// All that is recorded of one line.
#include "panel/trend/trend_store.h"

#include "panel/model/shown.h"

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

constexpr Moment shiftStep = 100; // ms; the two clocks are never read at one moment

Moment milliseconds(host::Duration span)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(span).count();
}

Counts countsOf(const host::RegisterValue &value)
{
    if (value.regType == QLatin1String("SW"))
        return Counts::Bits;
    return value.scaling.isSigned ? Counts::Signed : Counts::Unsigned;
}

bool isRecorded(const host::RegisterValue &value)
{
    return !value.name.isEmpty() || value.regType == QLatin1String("SW")
        || value.regType == QLatin1String("FU");
}

} // namespace

TrendStore::TrendStore(const host::Config &config, SnapshotSource snapshot, Clock clock,
                       QObject *parent)
    : QObject(parent)
    , m_config(config)
    , m_source(std::move(snapshot))
    , m_clock(std::move(clock))
    , m_began(m_clock.utc().toMSecsSinceEpoch())
    , m_beganAt(m_clock.steady())
{
}

void TrendStore::follow(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::valuesChanged, this, &TrendStore::noteValues);
    connect(&service, &LineService::writeEnded, this, &TrendStore::noteWriteEnded);
    connect(&service, &LineService::jobWrote, this, &TrendStore::noteWriteEnded);
}

Moment TrendStore::now() const
{
    return m_began + milliseconds(m_clock.steady() - m_beganAt);
}

Moment TrendStore::clockShift() const
{
    const Moment shift = m_clock.utc().toMSecsSinceEpoch() - now();
    return (shift + (shift < 0 ? -shiftStep : shiftStep) / 2) / shiftStep * shiftStep;
}

QVector<TraceInfo> TrendStore::registers() const
{
    QVector<TraceInfo> all;
    for (const auto &[key, record] : m_records)
        all.append(record.info);
    return all;
}

const TraceInfo *TrendStore::find(const TraceKey &key) const
{
    const auto found = m_records.find(key);
    return found == m_records.end() ? nullptr : &found->second.info;
}

QString TrendStore::nameOf(const TraceChoice &choice) const
{
    if (choice.bit >= 0)
        return m_config.states.value(choice.bit, tr("bit %1").arg(choice.bit));
    const TraceInfo *info = find(choice.key);
    return info ? info->name : QString();
}

QString TrendStore::driveOf(int station) const
{
    for (const host::StationConfig &known : m_config.stations) {
        if (known.address == station && !known.name.isEmpty())
            return known.name;
    }
    return tr("Station %1").arg(station);
}

TrendStore::Record *TrendStore::recordOf(const host::RegisterValue &value, QVector<TraceKey> *added)
{
    if (!isRecorded(value))
        return nullptr;
    const TraceKey key { value.station, value.regType, value.address };
    auto found = m_records.find(key);
    if (found == m_records.end()) {
        const Counts counts = countsOf(value);
        const QString name = value.name.isEmpty() ? value.regType : value.name;
        const TraceInfo info { key, driveOf(value.station), name, value.scaling, counts };
        found = m_records.emplace(key, Record { info, RegisterHistory(counts), 0 }).first;
        added->append(key);
    }
    return &found->second;
}

void TrendStore::noteValues(const QVector<host::RegisterValue> &values)
{
    QVector<TraceKey> added;
    for (const host::RegisterValue &value : values) {
        if (Record *record = recordOf(value, &added))
            note(*record, value, host::Duration(0));
    }
    if (!added.isEmpty())
        Q_EMIT learned(added);
}

/// The larger of both: a window that hung sees a snapshot late, and the time of day may be set
/// back.
host::Duration TrendStore::sinceSnapshot() const
{
    const host::Duration seen = m_clock.steady() - m_seenAt;
    if (!m_snapshot->takenAt.isValid())
        return seen;
    return std::max<host::Duration>(
        seen, std::chrono::milliseconds(m_snapshot->takenAt.msecsTo(m_clock.utc())));
}

void TrendStore::look()
{
    const auto newest = m_source();
    if (!newest)
        return;
    if (newest != m_snapshot) {
        m_snapshot = newest;
        m_seenAt = m_clock.steady();
    }
    QVector<TraceKey> added;
    const host::Duration since = sinceSnapshot();
    for (const host::RegisterValue &value : m_snapshot->registers) {
        if (Record *record = recordOf(value, &added))
            note(*record, value, since);
    }
    if (!added.isEmpty())
        Q_EMIT learned(added);
}

/// A value whose write has not ended is a wish.
void TrendStore::note(Record &record, const host::RegisterValue &value, host::Duration since)
{
    if (value.state.writePending)
        return;
    const host::Duration age = ageOf(value, since);
    const Moment readAt = now() - milliseconds(age);
    if (!value.state.known || value.state.stale || age >= oldFrom)
        return record.history.lose(std::min(now(), readAt + milliseconds(oldFrom)));
    const bool isNew = record.history.value() != std::optional<quint16>(value.state.value);
    record.history.note(readAt, value.state.value, value.state.failed);
    if (isNew)
        noteChange(record, readAt, value.state.value);
}

void TrendStore::noteChange(Record &record, Moment at, quint16 value)
{
    const TraceInfo &info = record.info;
    if (info.key.regType == QLatin1String("FU"))
        noteFault(record, at, value);
    const double quantity = info.scaling.quantity(value);
    if (m_trigger.note(info.key, quantity))
        fire(at, info.key.station, tr("%1: %2").arg(info.name, info.scaling.text(value)));
}

void TrendStore::noteFault(Record &record, Moment at, quint16 code)
{
    if (std::exchange(record.faultCode, code) == code || code == 0)
        return;
    const int station = record.info.key.station;
    const QString word = m_config.faults.value(code, tr("fault %1").arg(code));
    addMarker({ at, Marker::Kind::Fault, station, word });
    if (m_trigger.noteFault())
        fire(at, station, word);
}

void TrendStore::fire(Moment at, int station, const QString &what)
{
    const QString text = QStringLiteral("%1, %2").arg(driveOf(station), what);
    addMarker({ at, Marker::Kind::Trigger, station, text });
    Q_EMIT fired(at, text);
}

void TrendStore::noteWriteEnded(const host::WriteOutcome &outcome)
{
    if (outcome.sent)
        addMarker({ now(), Marker::Kind::Write, outcome.wish.station, outcome.text });
}

void TrendStore::addMarker(const Marker &marker)
{
    m_markers.push_back(marker);
    if (m_markers.size() > mostMarkers)
        m_markers.pop_front();
}

QVector<Marker> TrendStore::markers(Moment from, Moment to) const
{
    QVector<Marker> found;
    for (const Marker &marker : m_markers) {
        if (marker.at >= from && marker.at < to)
            found.append(marker);
    }
    return found;
}

void TrendStore::arm(const TriggerRule &rule)
{
    m_trigger.arm(rule);
    const auto found = m_records.find(rule.key);
    if (found == m_records.end())
        return;
    if (const auto value = found->second.history.value())
        m_trigger.note(rule.key, found->second.info.scaling.quantity(*value));
}

std::size_t TrendStore::levelFor(const QVector<TraceChoice> &choices, Moment from, Moment to,
                                 int most)
{
    std::size_t level = 0;
    for (const TraceChoice &choice : choices) {
        const auto found = m_records.find(choice.key);
        if (found != m_records.end())
            level = std::max(level, found->second.history.levelFor(from, to, now(), most));
    }
    return level;
}

void TrendStore::read(const TraceKey &key, std::size_t level, Moment from, Moment to,
                      ColumnRun *run)
{
    run->columns.clear();
    const auto found = m_records.find(key);
    if (found != m_records.end())
        found->second.history.read(level, from, to, now(), run);
}

std::optional<quint16> TrendStore::valueOf(const TraceKey &key) const
{
    const auto found = m_records.find(key);
    return found == m_records.end() ? std::nullopt : found->second.history.value();
}

void TrendStore::addPast(const TraceKey &key, std::size_t level, Moment rowWidth,
                         const QVector<PastRow> &rows)
{
    const auto found = m_records.find(key);
    if (found != m_records.end())
        found->second.history.addPast(level, rowWidth, rows);
}

void TrendStore::addPastMarkers(const QVector<Marker> &markers)
{
    // Registers that are learned later ask once more.
    if (std::exchange(m_hasPastMarkers, true))
        return;
    for (auto marker = markers.crbegin(); marker != markers.crend(); ++marker) {
        if (m_markers.size() < mostMarkers)
            m_markers.push_front(*marker);
    }
}

std::size_t TrendStore::bytes() const
{
    std::size_t sum = 0;
    for (const auto &[key, record] : m_records)
        sum += record.history.bytes();
    return sum;
}

} // namespace dx4::panel
