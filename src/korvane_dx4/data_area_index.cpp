// SPDX-License-Identifier: MIT
// Finds the record of a register in driver.dataAreas at a cost that does not grow with the cache.
#include "korvane_dx4/data_area_index.h"

#include "korvane_dx4/record_copy.h"
#include "wire/register_type.h"

#include <QtAlgorithms>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace dx4 {
namespace {

constexpr std::size_t smallestTable = 4; // buckets, a power of two
constexpr quint32 slotBits = 3; // an address's low bits, which the bucket does not depend on
constexpr quint32 slotMask = (1U << slotBits) - 1;
constexpr unsigned wordBits = 64; // of the marks of records that stand side by side

// Three quarters of the slots may be taken: 10.7 to 21.3 bytes per register.
constexpr std::size_t entriesPerBucket = 6;

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

// High bits: the bucket of eight neighbouring addresses, scattered so that neighbouring groups end
// far apart. Low bits: which of the eight.
quint32 tagOf(const RegisterKey &key)
{
    const quint32 owner = static_cast<quint32>(key.owner.station) * 8U + key.owner.typeBits;
    const quint32 address = static_cast<quint32>(key.address);
    quint64 bits = (quint64 { owner } << 32) | (address >> slotBits);
    bits *= 0x9E3779B97F4A7C15ULL;
    bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93ULL;
    return (static_cast<quint32>(bits >> 32) & ~slotMask) | (address & slotMask);
}

} // namespace

RegisterOwner::RegisterOwner(int stationNumber, const QString &name)
    : station(stationNumber)
    , regType(name)
    , typeBits(nameBits(name))
{
}

DataAreaIndex dataAreaIndex;

int DataAreaIndex::findOrAppend(const RegisterKey &key)
{
    const quint32 tag = tagOf(key);
    Place place = probe(key, tag);
    if (place.position == emptySlot && !isComplete()) {
        rebuild();
        place = probe(key, tag);
    }
    return place.position == emptySlot ? append(key, tag, place) : place.position;
}

int DataAreaIndex::append(const RegisterKey &key, quint32 tag, Place place)
{
    if (!m_writing)
        letGo();
    const int position = static_cast<int>(driver.dataAreas.size());
    // Copied from a record that has the name already, which costs less than giving it the name.
    m_fresh.station = key.owner.station;
    assignText(m_fresh.regType, key.owner.regType);
    m_fresh.address = key.address;
    driver.dataAreas.append(m_fresh);
    const bool hasRoom = static_cast<std::size_t>(m_entries) < m_buckets.size() * entriesPerBucket;
    if (!place.bucket || !hasRoom) {
        insert(tag, position);
        return position;
    }
    place.bucket->tags[place.slot] = tag;
    place.bucket->positions[place.slot] = position;
    ++m_entries;
    return position;
}

void DataAreaIndex::join(int position)
{
    const std::size_t word = static_cast<std::size_t>(position) / wordBits;
    if (word >= m_joined.size())
        m_joined.resize(word + 1);
    m_joined[word] |= quint64 { 1 } << (static_cast<unsigned>(position) % wordBits);
}

int DataAreaIndex::joinedFrom(int position, int most) const
{
    int count = 1;
    while (count < most) {
        const unsigned next = static_cast<unsigned>(position + count);
        if (next / wordBits >= m_joined.size())
            break;
        const unsigned bit = next % wordBits;
        const int ones =
            static_cast<int>(qCountTrailingZeroBits(~(m_joined[next / wordBits] >> bit)));
        count += ones;
        const bool reachesNextWord = static_cast<unsigned>(ones) + bit == wordBits;
        if (!reachesNextWord)
            break;
    }
    return std::min(count, most);
}

void DataAreaIndex::forget()
{
    std::vector<Bucket>().swap(m_buckets);
    std::vector<quint64>().swap(m_joined);
    m_fresh = {};
    m_entries = 0;
    m_complete = true;
    m_seen = driver.dataAreas;
    m_writing = false;
}

void DataAreaIndex::beginCall()
{
    if (isTouched())
        dropKnowledge();
}

void DataAreaIndex::endCall()
{
    if (isTouched())
        dropKnowledge();
    if (m_writing)
        m_seen = driver.dataAreas;
    m_writing = false;
}

void DataAreaIndex::letGo()
{
    if (isTouched())
        dropKnowledge();
    m_seen = {};
    m_writing = true;
}

// Whether somebody but the driver has changed the list. While the driver writes, only a host that
// changes it from inside its callback could, and its length is all that tells.
bool DataAreaIndex::isTouched() const
{
    if (m_writing)
        return m_complete && m_entries != driver.dataAreas.size();
    return !m_seen.isSharedWith(driver.dataAreas);
}

void DataAreaIndex::dropKnowledge()
{
    m_complete = false;
    m_joined.clear();
    if (!m_writing)
        m_seen = driver.dataAreas;
}

bool DataAreaIndex::isComplete() const
{
    return m_complete && !isTouched();
}

// Buckets are probed in steps of 1, 2, 3, ..., which reaches each bucket of a power of two. In its
// bucket an entry takes the slot of its address, another one only when that is taken. Nothing is
// ever removed, so that a free slot of its own, or any free slot behind a foreign one, ends the
// search.
DataAreaIndex::Place DataAreaIndex::probe(const RegisterKey &key, quint32 tag)
{
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t at = tag >> slotBits;
    for (std::size_t step = 1; step <= m_buckets.size(); at += step++) {
        Bucket &bucket = m_buckets[at & mask];
        const Place place = find(bucket, key, tag);
        if (place.bucket)
            return place;
    }
    return {};
}

DataAreaIndex::Place DataAreaIndex::find(Bucket &bucket, const RegisterKey &key, quint32 tag)
{
    const QList<_DATA_> &areas = driver.dataAreas;
    const unsigned own = tag & slotMask;
    for (unsigned i = 0; i < bucketSlots; ++i) {
        const unsigned slot = own ^ i; // its own first, then each of the others
        const int position = bucket.positions[slot];
        if (position == emptySlot)
            return { &bucket, static_cast<int>(slot), emptySlot };
        const bool isLikely = bucket.tags[slot] == tag && position < areas.size();
        if (isLikely && hasKey(areas.at(position), key))
            return { &bucket, static_cast<int>(slot), position };
    }
    return {};
}

void DataAreaIndex::rebuild()
{
    m_buckets.clear();
    m_joined.clear();
    m_entries = 0;
    const QList<_DATA_> &areas = driver.dataAreas;
    const int count = static_cast<int>(areas.size());
    for (int position = 0; position < count; ++position) {
        const _DATA_ &record = areas.at(position);
        insert(tagOf({ { record.station, record.regType }, record.address }), position);
    }
    m_complete = true;
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
        for (int slot = 0; slot < bucketSlots; ++slot) {
            if (bucket.positions[slot] != emptySlot)
                insert(bucket.tags[slot], bucket.positions[slot]);
        }
    }
}

void DataAreaIndex::insert(quint32 tag, int position)
{
    if (static_cast<std::size_t>(m_entries) >= m_buckets.size() * entriesPerBucket)
        grow();
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t at = tag >> slotBits;
    for (std::size_t step = 1;; at += step++) {
        Bucket &bucket = m_buckets[at & mask];
        for (unsigned i = 0; i < bucketSlots; ++i) {
            const unsigned slot = (tag & slotMask) ^ i;
            if (bucket.positions[slot] != emptySlot)
                continue;
            bucket.tags[slot] = tag;
            bucket.positions[slot] = position;
            ++m_entries;
            return;
        }
    }
}

} // namespace dx4
