// SPDX-License-Identifier: MIT
// Finds the record of a register in driver.dataAreas at a cost that does not grow with the cache.
#include "korvane_dx4/data_area_index.h"

#include "frames/record_copy.h"

namespace dx4 {
namespace {

constexpr qint32 noPosition = -1;

// Calls without a watch over the list, after the host touched it the first time and at most.
constexpr int firstPause = 16;
constexpr int longestPause = 4096;

bool standsAt(int position, const RegisterKey &key)
{
    return CachedRecords().hasAt(position, key.station, REG_LIST[key.type], key.address);
}

} // namespace

DataAreaIndex dataAreaIndex;

DataAreaIndex::Page &DataAreaIndex::turnTo(quint64 number)
{
    const auto [entry, isNew] = m_pages.try_emplace(number);
    if (isNew)
        entry->second.positions.fill(noPosition);
    m_lastNumber = number;
    m_lastPage = &entry->second;
    return entry->second;
}

int DataAreaIndex::findOrAppend(const RegisterKey &key)
{
    qint32 &position = pageOf(key).positions[placeOnPage(key.address)];
    if (standsAt(position, key))
        return position;
    if (!m_isComplete) {
        learn();
        if (standsAt(position, key))
            return position;
    }
    letGo();
    m_hasMissed = true;
    position = static_cast<qint32>(driver.dataAreas.size());
    // Copied from a record that has the name already, which costs less than giving it the name.
    m_fresh.station = key.station;
    assignText(m_fresh.regType, REG_LIST[key.type]);
    m_fresh.address = key.address;
    driver.dataAreas.append(m_fresh);
    return position;
}

void DataAreaIndex::check(Page &page, const RegisterKey &key)
{
    const CachedRecords records;
    const QString &name = REG_LIST[key.type];
    int address = wrapSub(key.address, static_cast<int>(placeOnPage(key.address)));
    for (qint32 &position : page.positions) {
        if (position != noPosition && !records.hasAt(position, key.station, name, address))
            position = noPosition;
        address = wrapAdd(address, 1);
    }
    page.checkedIn = m_generation;
}

void DataAreaIndex::forget()
{
    letGo();
    distrust();
    m_isForgotten = true;
    if (m_depth == 0)
        dropPages();
}

void DataAreaIndex::beginCall()
{
    if (m_isWatching && m_seen.isSharedWith(driver.dataAreas))
        return;
    if (m_isWatching) {
        m_pause = std::clamp(2 * m_pause, firstPause, longestPause);
        m_callsToPause = m_pause;
    }
    noteHostCalled();
}

void DataAreaIndex::endCall()
{
    if (m_isForgotten)
        dropPages();
    const bool isWanted = m_hasMissed || m_callsToPause == 0;
    m_hasMissed = false;
    if (m_isWatching)
        return;
    if (!isWanted) {
        --m_callsToPause;
        return;
    }
    m_seen = driver.dataAreas;
    m_isWatching = true;
}

// From the end, so that the first of two records that a host gave one key is the one that is found.
void DataAreaIndex::learn()
{
    for (auto position = static_cast<qint32>(driver.dataAreas.size()) - 1; position >= 0;
         --position) {
        const _DATA_ &record = driver.dataAreas.at(position);
        const RegisterType type = registerType(record.regType);
        if (type == UnknownType)
            continue;
        Page &page = pageOf({ record.station, type, record.address });
        page.positions[placeOnPage(record.address)] = position;
    }
    m_isComplete = true;
}

void DataAreaIndex::dropPages()
{
    m_pages = {};
    m_lastNumber = noPage;
    m_lastPage = nullptr;
    m_fresh = {};
    m_pause = m_callsToPause = 0;
    m_isForgotten = false;
}

} // namespace dx4
