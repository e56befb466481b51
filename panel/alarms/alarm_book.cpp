// SPDX-License-Identifier: MIT
// The alarms of one line and how far somebody has taken note of them.
#include "panel/alarms/alarm_book.h"

#include <algorithm>
#include <tuple>

namespace dx4::panel {
namespace {

auto tied(const AlarmKey &key)
{
    return std::tie(key.kind, key.station, key.code, key.message);
}

bool isActive(const Alarm &alarm)
{
    return alarm.state == AlarmState::Active || alarm.state == AlarmState::Acknowledged;
}

/// What is active and unknown to everybody comes first, what everybody knows last.
int rank(AlarmState state)
{
    if (state == AlarmState::Active)
        return 0;
    return state == AlarmState::Returned ? 1 : 2;
}

/// Whether one is to be read ahead of another.
bool isAhead(const Alarm &a, const Alarm &b)
{
    return std::make_tuple(rank(a.state), a.since, tied(a.key))
        < std::make_tuple(rank(b.state), b.since, tied(b.key));
}

} // namespace

bool operator<(const AlarmKey &a, const AlarmKey &b)
{
    return tied(a) < tied(b);
}

bool operator==(const AlarmKey &a, const AlarmKey &b)
{
    return tied(a) == tied(b);
}

bool isUnacknowledged(const Alarm &alarm)
{
    return alarm.state == AlarmState::Active || alarm.state == AlarmState::Returned;
}

void AlarmBook::raise(const AlarmKey &key, const QString &reason, journal::Time at)
{
    const auto found = m_alarms.find(key);
    if (found == m_alarms.end()) {
        m_alarms[key] = { key, AlarmState::Active, reason, at, at, 0, 1 };
        ++m_version;
        return makeRoom();
    }
    Alarm &alarm = found->second;
    if (isActive(alarm) && alarm.reason == reason)
        return;
    if (!isActive(alarm)) {
        alarm.state = AlarmState::Active;
        alarm.newest = at;
        alarm.returned = 0;
        ++alarm.count;
    }
    alarm.reason = reason;
    ++m_version;
}

void AlarmBook::clear(const AlarmKey &key, journal::Time at)
{
    const auto found = m_alarms.find(key);
    if (found == m_alarms.end() || !isActive(found->second))
        return;
    ++m_version;
    if (found->second.state == AlarmState::Acknowledged) {
        m_alarms.erase(found);
        return;
    }
    found->second.state = AlarmState::Returned;
    found->second.returned = at;
}

void AlarmBook::note(const AlarmKey &key, const QString &reason, journal::Time at)
{
    raise(key, reason, at);
    clear(key, at);
}

bool AlarmBook::acknowledge(const AlarmKey &key)
{
    const auto found = m_alarms.find(key);
    if (found == m_alarms.end() || !isUnacknowledged(found->second))
        return false;
    ++m_version;
    if (found->second.state == AlarmState::Returned) {
        m_alarms.erase(found);
        return true;
    }
    found->second.state = AlarmState::Acknowledged;
    found->second.since = found->second.newest;
    found->second.count = 1;
    return true;
}

void AlarmBook::drop(const AlarmKey &key)
{
    if (m_alarms.erase(key) > 0)
        ++m_version;
}

void AlarmBook::restore(const AlarmBook &before)
{
    for (const auto &[key, old] : before.m_alarms) {
        const auto [place, isNew] = m_alarms.emplace(key, old);
        Alarm &alarm = place->second;
        if (isNew)
            continue;
        // What was active before and is now has not come anew.
        const bool isSame = isActive(old) && isActive(alarm);
        if (isSame)
            alarm.state = old.state;
        alarm.newest = isSame ? old.newest : alarm.newest;
        alarm.count = isSame ? old.count : old.count + alarm.count;
        alarm.since = std::min(old.since, alarm.since);
    }
    ++m_version;
    makeRoom();
}

void AlarmBook::makeRoom()
{
    const auto goesFirst = [](const auto &a, const auto &b) {
        return std::make_tuple(isActive(a.second), a.second.newest)
            < std::make_tuple(isActive(b.second), b.second.newest);
    };
    while (m_alarms.size() > static_cast<std::size_t>(mostAlarms)) {
        m_alarms.erase(std::min_element(m_alarms.begin(), m_alarms.end(), goesFirst));
        ++m_dropped;
    }
}

const Alarm *AlarmBook::find(const AlarmKey &key) const
{
    const auto found = m_alarms.find(key);
    return found == m_alarms.end() ? nullptr : &found->second;
}

QVector<Alarm> AlarmBook::list() const
{
    QVector<Alarm> alarms;
    for (const auto &[key, alarm] : m_alarms)
        alarms.append(alarm);
    std::sort(alarms.begin(), alarms.end(), isAhead);
    return alarms;
}

const Alarm *AlarmBook::oldest() const
{
    const Alarm *oldest = nullptr;
    for (const auto &[key, alarm] : m_alarms) {
        if (isUnacknowledged(alarm) && (!oldest || isAhead(alarm, *oldest)))
            oldest = &alarm;
    }
    return oldest;
}

int AlarmBook::unacknowledged() const
{
    return static_cast<int>(std::count_if(m_alarms.begin(), m_alarms.end(), [](const auto &of) {
        return isUnacknowledged(of.second);
    }));
}

int AlarmBook::active() const
{
    return static_cast<int>(std::count_if(m_alarms.begin(), m_alarms.end(),
                                          [](const auto &of) { return isActive(of.second); }));
}

} // namespace dx4::panel
