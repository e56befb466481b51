// SPDX-License-Identifier: MIT
// Finds the record of a register in driver.dataAreas at a cost that does not grow with the cache.
#include "korvane_dx4/data_area_index.h"

#include "korvane_dx4.h"
#include "korvane_dx4/record_copy.h"
#include "wire/register_type.h"

#include <utility>

namespace dx4 {
namespace {

constexpr std::size_t smallestTable = 4; // buckets, a power of two
constexpr quint32 slotBits = 3; // an address's low bits, which the bucket does not depend on
constexpr quint32 slotMask = (1U << slotBits) - 1;

// Three quarters of the slots may be taken: 10.7 to 21.3 bytes per register.
constexpr std::size_t entriesPerBucket = 6;

// Spreads 32 bits over 32 bits so that neighbouring inputs end far apart.
constexpr quint32 scatter(quint32 bits)
{
    bits = (bits ^ (bits >> 16)) * 0x85EBCA6BU;
    bits = (bits ^ (bits >> 13)) * 0xC2B2AE35U;
    return bits ^ (bits >> 16);
}

quint32 nameBits(const QString &name)
{
    const RegisterType type = registerType(name);
    if (type != UnknownType)
        return static_cast<quint32>(type);
    quint32 bits = 0x811C9DC5U;
    for (const QChar letter : name)
        bits = (bits ^ letter.unicode()) * 0x01000193U;
    return bits;
}

// High bits: the bucket of eight neighbouring addresses. Low bits: which of them.
quint32 tagOf(const RegisterKey &key)
{
    const quint32 device = scatter(static_cast<quint32>(key.station) * 8U + nameBits(key.regType));
    const quint32 address = static_cast<quint32>(key.address);
    const quint32 group = scatter(device ^ (address >> slotBits));
    return (group & ~slotMask) | (address & slotMask);
}

RegisterKey keyOf(const _DATA_ &record)
{
    return { record.station, record.regType, record.address };
}

} // namespace

DataAreaIndex dataAreaIndex;

int DataAreaIndex::findOrAppend(const RegisterKey &key)
{
    const quint32 tag = tagOf(key);
    int position = probe(key, tag);
    if (position == emptySlot && !isComplete()) {
        rebuild();
        position = probe(key, tag);
    }
    return position == emptySlot ? append(key, tag) : position;
}

int DataAreaIndex::append(const RegisterKey &key, quint32 tag)
{
    letGo();
    const int position = static_cast<int>(driver.dataAreas.size());
    driver.dataAreas.append(_DATA_());
    _DATA_ &record = driver.dataAreas.last();
    record.station = key.station;
    record.regType = key.regType;
    record.address = key.address;
    insert(tag, position);
    return position;
}

_DATA_ &DataAreaIndex::edit(int position)
{
    letGo();
    return driver.dataAreas[position];
}

void DataAreaIndex::forget()
{
    m_buckets = {};
    m_entries = 0;
    m_seen = driver.dataAreas;
    m_stale = false;
    m_writing = false;
}

bool DataAreaIndex::isComplete() const
{
    if (m_stale)
        return false;
    return m_writing ? m_entries == driver.dataAreas.size() : m_seen.isSharedWith(driver.dataAreas);
}

// Buckets are probed in steps of 1, 2, 3, ..., which reaches each bucket of a power of two. A
// bucket with an empty slot ends the search, because nothing is ever removed.
int DataAreaIndex::probe(const RegisterKey &key, quint32 tag) const
{
    if (m_buckets.empty())
        return emptySlot;
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t bucket = tag >> slotBits;
    for (std::size_t step = 1; step <= m_buckets.size(); bucket += step++) {
        const Bucket &candidates = m_buckets[bucket & mask];
        for (int slot = 0; slot < bucketSlots; ++slot) {
            const int position = candidates.positions[slot];
            if (position == emptySlot)
                return emptySlot;
            const bool isLikely =
                candidates.tags[slot] == tag && position < driver.dataAreas.size();
            if (isLikely && hasKey(driver.dataAreas.at(position), key))
                return position;
        }
    }
    return emptySlot;
}

void DataAreaIndex::rebuild()
{
    m_buckets = {};
    m_entries = 0;
    const QList<_DATA_> &areas = driver.dataAreas;
    const int count = static_cast<int>(areas.size());
    for (int position = 0; position < count; ++position)
        insert(tagOf(keyOf(areas.at(position))), position);
    m_stale = false;
    if (!m_writing)
        m_seen = areas;
}

void DataAreaIndex::grow()
{
    const std::vector<Bucket> old = std::exchange(m_buckets, {});
    Bucket empty {};
    for (qint32 &position : empty.positions)
        position = emptySlot;
    m_buckets.assign(old.empty() ? smallestTable : old.size() * 2, empty);
    m_entries = 0;
    for (const Bucket &bucket : old) {
        for (int slot = 0; slot < bucketSlots && bucket.positions[slot] != emptySlot; ++slot)
            insert(bucket.tags[slot], bucket.positions[slot]);
    }
}

void DataAreaIndex::insert(quint32 tag, int position)
{
    if (static_cast<std::size_t>(m_entries) >= m_buckets.size() * entriesPerBucket)
        grow();
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t bucket = tag >> slotBits;
    for (std::size_t step = 1;; bucket += step++) {
        Bucket &target = m_buckets[bucket & mask];
        for (int slot = 0; slot < bucketSlots; ++slot) {
            if (target.positions[slot] != emptySlot)
                continue;
            target.tags[slot] = tag;
            target.positions[slot] = position;
            ++m_entries;
            return;
        }
    }
}

void DataAreaIndex::letGo()
{
    if (m_writing)
        return;
    m_stale = !isComplete();
    m_seen = {};
    m_writing = true;
}

void DataAreaIndex::endWriting()
{
    if (!m_writing)
        return;
    m_stale = !isComplete();
    m_writing = false;
    if (!m_stale)
        m_seen = driver.dataAreas;
}

CacheWriting::~CacheWriting()
{
    if (--dataAreaIndex.m_depth == 0)
        dataAreaIndex.endWriting();
}

} // namespace dx4
