// SPDX-License-Identifier: MIT
// Finds the record of a register in driver.dataAreas at a cost that does not grow with the cache.
#pragma once

#include "host_records.h"
#include "wire/register_type.h"

#include <QList>

#include <vector>

namespace dx4 {

/// Key of a cached register; the name must outlive the key.
struct RegisterKey {
    int station;
    const QString &regType;
    int address;
};

/// Whether a record has this key.
inline bool hasKey(const _DATA_ &record, const RegisterKey &key)
{
    return record.address == key.address && record.station == key.station
        && sameText(record.regType, key.regType);
}

/// Hash index over driver.dataAreas.
///
/// The list is the truth and the host may change it between two calls, so the index is never
/// believed:
/// - A position it gives is checked against the record that stands there. As no two records share a
///   key, a record with the wanted key is the right one, however it was found.
/// - That a key is missing is believed only while the index is known to be complete. For this it
///   keeps a copy of the list. Qt shares the two until somebody touches the list other than for
///   reading, so "still shared" means "nobody has touched it". Otherwise the index is made anew.
///
/// The driver's own writes let go of the copy first, or they would copy the whole list.
/// CacheWriting takes it again when the outermost call ends.
class DataAreaIndex {
public:
    /// Position of the record with this key; a missing one is appended, zeroed but for its key.
    int findOrAppend(const RegisterKey &key);

    /// The record at a position of the list, to be written. Valid until the list changes.
    _DATA_ &edit(int position);

    /// Empties the index along with the list, and frees the copy.
    void forget();

private:
    friend class CacheWriting;

    // Registers with neighbouring addresses share a bucket, one cache line, filled from its start.
    static constexpr int bucketSlots = 8;
    static constexpr int emptySlot = -1;

    struct alignas(64) Bucket {
        quint32 tags[bucketSlots];
        qint32 positions[bucketSlots];
    };

    bool isComplete() const;
    int probe(const RegisterKey &key, quint32 tag) const;
    int append(const RegisterKey &key, quint32 tag);
    void rebuild();
    void grow();
    void insert(quint32 tag, int position);
    void letGo();
    void endWriting();

    std::vector<Bucket> m_buckets;
    int m_entries = 0;
    QList<_DATA_> m_seen; // shares with driver.dataAreas while nobody else has touched that
    bool m_stale = false; // the host has touched the list since the index was made
    bool m_writing = false; // the copy is let go of; only the driver touches the list
    int m_depth = 0; // nested CacheWriting
};

extern DataAreaIndex dataAreaIndex;

/// Scope in which the driver may write to its cache. Entry points nest when a callback calls back
/// in; the outermost scope takes the copy of the list again.
class CacheWriting {
public:
    CacheWriting() { ++dataAreaIndex.m_depth; }
    ~CacheWriting();
    CacheWriting(const CacheWriting &) = delete;
    CacheWriting &operator=(const CacheWriting &) = delete;
};

} // namespace dx4
