// SPDX-License-Identifier: MIT
// The registers of a line that somebody looks at, and what changed of them.
#include "host/service/register_table.h"

#include "host/config/config.h"
#include "host/link/address_range.h"

#include <utility>

namespace dx4::host {
namespace {

bool isSame(const Value &a, const Value &b)
{
    return std::tie(a.value, a.known, a.failed, a.stale, a.writePending)
        == std::tie(b.value, b.known, b.failed, b.stale, b.writePending);
}

} // namespace

void RegisterTable::setPlan(const Plan &plan)
{
    m_polled.clear();
    for (const KEY_ADDRESS &run : plan.blocks) {
        for (int i = 0; i < run.count; ++i)
            m_polled.emplace(run.station, run.regType, run.address + i);
    }
    rebuild();
}

void RegisterTable::setLabels(const Config &config, const Link &link)
{
    m_labels.clear();
    for (const StationConfig &station : config.stations) {
        for (const RegisterConfig &wanted : station.registers) {
            const auto range = parseRange(wanted.at, nullptr);
            int first = 0;
            const bool isKnown = range
                && link.api().checkAddr(range->regType, range->firstText, &first, 0, range->count,
                                        ReadAccess)
                    == AddressAccepted;
            for (int i = 0; isKnown && i < range->count; ++i)
                m_labels[{ station.address, range->regType, first + i }] = { wanted.name,
                                                                             wanted.scaling };
        }
    }
    m_entries.clear();
    rebuild();
}

void RegisterTable::add(int station, const QString &regType, int address, int count)
{
    const std::size_t before = m_added.size();
    for (int i = 0; i < count; ++i)
        m_added.emplace(station, regType, address + i);
    touch(station);
    if (m_added.size() != before)
        rebuild();
}

/// Registers that stay keep what is known of them.
void RegisterTable::rebuild()
{
    std::set<Key> wanted = m_polled;
    wanted.insert(m_added.begin(), m_added.end());
    std::map<Key, Entry> former = std::exchange(m_entries, {});
    m_stations.clear();
    for (const Key &key : wanted) {
        m_stations.insert(std::get<0>(key));
        Entry &entry = m_entries[key];
        const auto known = former.find(key);
        if (known != former.end()) {
            entry = std::move(known->second);
            continue;
        }
        std::tie(entry.shown.station, entry.shown.regType, entry.shown.address) = key;
        const auto label = m_labels.find(key);
        if (label != m_labels.end()) {
            entry.shown.name = label->second.name;
            entry.shown.scaling = label->second.scaling;
        }
        touch(entry.shown.station);
    }
}

QVector<RegisterValue> RegisterTable::refresh(const Runtime &runtime, Duration now)
{
    QVector<RegisterValue> changed;
    for (auto &[key, entry] : m_entries) {
        const auto &[station, regType, address] = key;
        if (!m_isAllTouched && m_touched.count(station) == 0)
            continue;
        if (renew(entry, runtime.value(station, regType, address), now))
            changed.append(entry.shown);
    }
    m_touched.clear();
    m_isAllTouched = false;
    return changed;
}

/// @return whether a user has to be told
bool RegisterTable::renew(Entry &entry, const Value &state, Duration now)
{
    const bool isNews = std::exchange(entry.isNew, false) || !isSame(entry.shown.state, state);
    entry.shown.state = state;
    entry.readAt = now - state.age;
    return isNews;
}

QVector<RegisterValue> RegisterTable::all(Duration now) const
{
    QVector<RegisterValue> values;
    for (const auto &[key, entry] : m_entries) {
        values.append(entry.shown);
        if (entry.shown.state.known)
            values.last().state.age = now - entry.readAt;
    }
    return values;
}

} // namespace dx4::host
