// SPDX-License-Identifier: MIT
// Finds the record of a register in driver.dataAreas at a cost that does not grow with the cache.
#pragma once

#include "host_records.h"
#include "korvane_dx4.h"
#include "wire/register_type.h"

#include <QList>

#include <vector>

namespace dx4 {

/// Station and type that cached registers belong to; the name must outlive it.
struct RegisterOwner {
    /// @param name  records created get this string. With sharedName() of it they are found again
    /// by
    ///              comparing one pointer
    RegisterOwner(int stationNumber, const QString &name);

    /// @param type  one of the six
    RegisterOwner(int stationNumber, RegisterType type)
        : station(stationNumber)
        , regType(REG_LIST[type])
        , typeBits(static_cast<quint32>(type))
    {
    }

    int station;
    const QString &regType;
    quint32 typeBits; ///< of the name, for hashing
};

/// Key of a cached register.
struct RegisterKey {
    const RegisterOwner &owner;
    int address;
};

/// Whether a record has this key.
inline bool hasKey(const _DATA_ &record, const RegisterKey &key)
{
    return record.address == key.address && record.station == key.owner.station
        && sameText(record.regType, key.owner.regType);
}

/// Hash index over driver.dataAreas.
///
/// The list is the truth and the host may change it between two calls, so the index is never
/// believed blindly:
/// - A position it gives is checked against the record that stands there. As no two records share a
///   key, a record with the wanted key is the right one, however it was found.
/// - That a key is missing, and that records stand side by side, is believed only while nobody else
///   has touched the list. To know that, a copy of the list is kept: Qt shares the two until
///   somebody touches the list other than for reading. Then what was known is dropped and learnt
///   again.
///
/// The driver's own writes let go of the copy first, or they would copy the whole list.
/// CacheScope takes it again when the outermost call ends.
class DataAreaIndex {
public:
    /// Position of the record with this key; a missing one is appended, zeroed but for its key.
    int findOrAppend(const RegisterKey &key);

    /// The record at a position of the list, to be written. Valid until the list changes.
    _DATA_ &edit(int position)
    {
        if (!m_writing)
            letGo();
        return driver.dataAreas[position];
    }

    /// Notes that the record at a position is that of the register behind the one before it.
    void join(int position);

    /// Records from a position on that are known to be those of consecutive registers: 1 to `most`.
    int joinedFrom(int position, int most) const;

    /// Empties the index along with the list, and frees its memory.
    void forget();

private:
    friend class CacheScope;

    // Registers with neighbouring addresses share a bucket, one cache line.
    static constexpr int bucketSlots = 8;
    static constexpr int emptySlot = -1;

    struct alignas(64) Bucket {
        quint32 tags[bucketSlots];
        qint32 positions[bucketSlots];
    };

    // Where a search ended: at a record, or at the slot that a new one would take.
    struct Place {
        Bucket *bucket = nullptr;
        int slot = 0;
        int position = emptySlot;
    };

    void beginCall();
    void endCall();
    void letGo();
    bool isTouched() const;
    void dropKnowledge();
    bool isComplete() const;
    Place probe(const RegisterKey &key, quint32 tag);
    static Place find(Bucket &bucket, const RegisterKey &key, quint32 tag);
    int append(const RegisterKey &key, quint32 tag, Place place);
    void rebuild();
    void grow();
    void insert(quint32 tag, int position);

    std::vector<Bucket> m_buckets;
    _DATA_ m_fresh; // the record appended last, zeroed but for its key
    int m_entries = 0;
    bool m_complete = true; // every record of the list has its entry
    std::vector<quint64> m_joined; // bit p: record p continues record p - 1
    QList<_DATA_> m_seen; // shares with driver.dataAreas while nobody else has touched that
    bool m_writing = false; // the copy is let go of; only the driver touches the list
    int m_depth = 0; // nested CacheScope
};

extern DataAreaIndex dataAreaIndex;

/// Scope of a call that looks into the cache or writes to it. Calls nest when a callback calls back
/// in; the outermost scope finds out what the host did to the list before and takes its copy after.
class CacheScope {
public:
    CacheScope()
    {
        if (dataAreaIndex.m_depth++ == 0)
            dataAreaIndex.beginCall();
    }
    ~CacheScope()
    {
        if (--dataAreaIndex.m_depth == 0)
            dataAreaIndex.endCall();
    }
    CacheScope(const CacheScope &) = delete;
    CacheScope &operator=(const CacheScope &) = delete;
};

} // namespace dx4
