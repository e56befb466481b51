// SPDX-License-Identifier: MIT
// The lower bound of merging: sorts keys, joins neighbours, copies each block once into each list.
#include "limit.h"

#include <algorithm>

namespace bench {
namespace {

struct Key {
    quint32 weight;
    qint32 source;
    qint32 type;
    qint32 address;
    qint32 count;
};

// The editor's order of the types: F, D, CW, SW, FRE, FU.
quint32 weightOf(int station, int type, int address)
{
    constexpr quint32 place[] = { 1, 2, 3, 5, 4, 6 };
    return 65535U * (5U * static_cast<quint32>(station) + place[type])
        + static_cast<quint32>(address);
}

bool joins(const Key &block, const Key &next, int blockSize)
{
    if (block.type != next.type || next.address > block.address + block.count)
        return false;
    const bool entersGroup = block.type == 0 && block.address / 256 != next.address / 256;
    return !entersGroup && next.address + next.count - block.address <= blockSize;
}

void joinNeighbours(std::vector<Key> &keys, int blockSize)
{
    std::size_t blocks = 0;
    for (const Key &key : keys) {
        if (blocks > 0 && joins(keys[blocks - 1], key, blockSize))
            keys[blocks - 1].count = key.address + key.count - keys[blocks - 1].address;
        else
            keys[blocks++] = key;
    }
    keys.resize(blocks);
}

std::vector<Key> sortedKeys(const QList<KEY_ADDRESS> &addresses)
{
    std::vector<Key> keys;
    keys.reserve(static_cast<std::size_t>(addresses.size()));
    qint32 source = 0;
    for (const KEY_ADDRESS &key : addresses) {
        const int type = typeCode(key.regType);
        keys.push_back(
            { weightOf(key.station, type, key.address), source++, type, key.address, key.count });
    }
    std::sort(keys.begin(), keys.end(), [](const Key &a, const Key &b) {
        return a.weight != b.weight ? a.weight < b.weight : a.source < b.source;
    });
    return keys;
}

} // namespace

void Limit::markMonitored(const QList<KEY_ADDRESS> &addresses)
{
    for (int i = 0; i < m_records.size(); ++i)
        m_records.at(i).flags = m_records.at(i).bitMask = 0;
    for (const KEY_ADDRESS &key : addresses) {
        RecordTable::Run run(m_records, key.station, typeCode(key.regType));
        for (int i = 0; i < key.count; ++i)
            run[key.address + i].flags |= 1;
    }
}

int Limit::merge(QList<KEY_ADDRESS> &addresses)
{
    const QList<KEY_ADDRESS> wanted = addresses;
    markMonitored(wanted);
    std::vector<Key> keys = sortedKeys(wanted);
    joinNeighbours(keys, m_blockSize);
    joinNeighbours(keys, m_blockSize);

    m_reads.clear();
    m_reads.reserve(keys.size());
    m_nextRead = 0;
    addresses = {};
    addresses.reserve(static_cast<int>(keys.size()));
    for (const Key &key : keys) {
        addresses.append(wanted.at(key.source));
        addresses.last().count = key.count;
        auto read = std::make_unique<VARIABLE>();
        read->varKind = 4;
        read->station = addresses.constLast().station;
        read->regType = typeName(key.type);
        read->address = key.address;
        read->count = key.count;
        m_reads.push_back(std::move(read));
    }
    return static_cast<int>(m_reads.size());
}

} // namespace bench
