// SPDX-License-Identifier: MIT
// Finds the alarms in what a line tells, and keeps who took note of them.
#include "panel/alarms/alarm_watch.h"

#include "host/writes/stop_words.h"
#include "panel/alarms/alarm_events.h"
#include "register_tables.h"

#include <set>
#include <utility>

namespace dx4::panel {
namespace {

/// Whether this is what the drive says now.
bool isCertain(const host::Value &state)
{
    return state.known && !state.stale && !state.failed && !state.writePending;
}

bool isStationAlarm(const Alarm &alarm)
{
    return alarm.key.kind == AlarmKind::Fault || alarm.key.kind == AlarmKind::Station;
}

} // namespace

AlarmWatch::AlarmWatch(AlarmPort port, QObject *parent)
    : QObject(parent)
    , m_port(std::move(port))
{
}

journal::Time AlarmWatch::now() const
{
    return m_port.utc().toMSecsSinceEpoch();
}

void AlarmWatch::follow(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::alarmRaised, this, &AlarmWatch::noteAlarm);
    connect(&service, &LineService::stopEnded, this,
            [this](int, const host::StopReport &report) { noteStop(report); });
    connect(&service, &LineService::lineOpened, this, [this] { noteLine(false, {}); });
    connect(&service, &LineService::lineWentDown, this,
            [this](const QString &reason) { noteLine(true, reason); });
    connect(&service, &LineService::stationLost, this,
            [this](int station) { noteStation(station, true); });
    connect(&service, &LineService::stationBack, this,
            [this](int station) { noteStation(station, false); });
    connect(&service, &LineService::valuesChanged, this, &AlarmWatch::look);
}

void AlarmWatch::look()
{
    const auto newest = m_port.snapshot();
    if (!newest || newest == m_seen)
        return;
    m_seen = newest;
    lookAt(*newest);
}

void AlarmWatch::lookAt(const host::LineSnapshot &snapshot)
{
    if (snapshot.isOpen)
        noteLine(false, {});
    else if (!snapshot.downReason.isEmpty())
        noteLine(true, snapshot.downReason);
    std::set<int> answering;
    for (const host::RegisterValue &value : snapshot.registers) {
        if (!isCertain(value.state))
            continue;
        answering.insert(value.station);
        if (value.regType == REG_LIST[TypeFu] && value.address == 0)
            noteFault(value.station, value.state.value);
    }
    for (const int station : snapshot.lostStations) {
        answering.erase(station);
        noteStation(station, true);
    }
    for (const int station : answering)
        noteStation(station, false);
}

void AlarmWatch::restore(const AlarmBook &before)
{
    m_book.restore(before);
    m_faults.clear();
    clearUnknown();
    if (m_seen)
        lookAt(*m_seen);
}

/// Of a station that the configuration does not have any more nothing will be heard again.
void AlarmWatch::clearUnknown()
{
    const QVector<Alarm> alarms = m_book.list();
    for (const Alarm &alarm : alarms) {
        if (isStationAlarm(alarm) && !m_port.stations.contains(alarm.key.station))
            m_book.clear(alarm.key, now());
    }
}

void AlarmWatch::acknowledge(const QVector<AlarmKey> &keys)
{
    for (const AlarmKey &key : keys) {
        const Alarm *found = m_book.find(key);
        if (!found)
            continue;
        const Alarm alarm = *found;
        if (m_book.acknowledge(key) && m_port.note)
            m_port.note(acknowledgementOf(alarm, m_port.who));
    }
}

void AlarmWatch::noteFault(int station, int code)
{
    const auto [place, isFirst] = m_faults.emplace(station, code);
    if (!isFirst && std::exchange(place->second, code) == code)
        return;
    const QVector<Alarm> alarms = m_book.list();
    bool isKnown = code == 0;
    for (const Alarm &alarm : alarms) {
        if (alarm.key.kind != AlarmKind::Fault || alarm.key.station != station)
            continue;
        if (alarm.key.code != code)
            m_book.clear(alarm.key, now());
        else
            isKnown = isKnown || alarm.returned == 0;
    }
    if (code != 0)
        m_book.raise({ AlarmKind::Fault, station, code, {} }, {}, now());
    if (!isKnown)
        Q_EMIT faultCame(station, code);
}

void AlarmWatch::noteStation(int station, bool isLost)
{
    const AlarmKey key { AlarmKind::Station, station, 0, {} };
    if (isLost)
        m_book.raise(key, {}, now());
    else
        m_book.clear(key, now());
}

void AlarmWatch::noteLine(bool isDown, const QString &reason)
{
    const AlarmKey key { AlarmKind::Line, 0, 0, {} };
    if (isDown)
        m_book.raise(key, reason, now());
    else
        m_book.clear(key, now());
}

void AlarmWatch::noteStop(const host::StopReport &report)
{
    const AlarmKey key { AlarmKind::Stop, 0, 0, {} };
    if (report.unconfirmed.isEmpty())
        return m_book.clear(key, now());
    // The host raises a message with the same words.
    m_book.drop({ AlarmKind::Message, 0, 0, report.text });
    m_book.raise(key, report.text, now());
}

void AlarmWatch::noteAlarm(const QString &text)
{
    if (text == QLatin1String(host::allStopsConfirmed))
        return m_book.clear({ AlarmKind::Stop, 0, 0, {} }, now());
    m_book.note({ AlarmKind::Message, 0, 0, text }, text, now());
}

void AlarmWatch::noteJournal(const QString &reason)
{
    const AlarmKey key { AlarmKind::Journal, 0, 0, {} };
    if (reason.isEmpty())
        m_book.clear(key, now());
    else
        m_book.raise(key, reason, now());
}

} // namespace dx4::panel
