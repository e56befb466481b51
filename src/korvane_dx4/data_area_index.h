// SPDX-License-Identifier: MIT
// Finds the record of a register in driver.dataAreas at a cost that does not grow with the cache.
#pragma once

#include "host_records.h"
#include "korvane_dx4.h"
#include "registers/register_type.h"
#include "wire/wrap.h"

#include <QList>
#include <QString>

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

namespace dx4 {

/// A cached register; its type is one of the six.
struct RegisterKey {
    int station;
    RegisterType type;
    int address;
};

/// A run of registers by value: it outlives the list entry it was read from.
struct RegisterRange {
    int station;
    RegisterType type;
    int address;
    int count;
};

/// Whether a record has this key.
inline bool hasKey(const _DATA_ &record, int station, const QString &regType, int address)
{
    return record.address == address && record.station == station
        && (record.regType.isSharedWith(regType) || sameText(record.regType, regType));
}

/// Where the records of neighbouring registers stand, by pages of 32 addresses.
///
/// The list is the truth, and the host may change it whenever no call is under way and whenever it
/// is called back. What the index knows is believed in one of two ways:
/// - A position is checked against the record that stands there. As no two records share a key, a
///   record with the wanted key is the right one, however it was found.
/// - Without a look, where the list is known to be untouched since the page was checked; that a
///   record is missing, where it is since the whole list was learnt.
///
/// From one call to the next that is known by a copy of the list, which shares with it until
/// somebody touches it other than for reading. The driver's own writes let go of it first. As such
/// a touch copies all records, a host that does it gets fewer and fewer chances: the index looks at
/// each record meanwhile, and watches again when it needs to know that one is missing.
class DataAreaIndex {
public:
    static constexpr int pageRegisters = 32;

    struct Page {
        std::array<qint32, pageRegisters> positions;
        quint64 checkedIn = 0; // generation in which all positions were found right
    };

    /// Place of an address on its page.
    static quint32 placeOnPage(int address)
    {
        return static_cast<quint32>(address) % pageRegisters;
    }

    /// The page of a register. Stays where it is until the outermost call ends.
    Page &pageOf(const RegisterKey &key)
    {
        const quint64 number = pageNumber(key);
        return number == m_lastNumber ? *m_lastPage : turnTo(number);
    }

    /// Whether the positions on a page are right without a look at the records.
    bool isTrusted(const Page &page) const { return page.checkedIn == m_generation; }

    /// Drops the positions on the page of a register that are not right any more.
    void check(Page &page, const RegisterKey &key);

    /// Position of a record; a missing one is created at the end, zeroed but for its key.
    int findOrAppend(const RegisterKey &key);

    /// The record at a position of the list, to be written; its key stays. Valid until the list
    /// changes.
    _DATA_ &edit(int position)
    {
        letGo();
        return driver.dataAreas[position];
    }

    /// The host is about to be called: what it does to the list is not known.
    void noteHostCalled()
    {
        letGo();
        distrust();
    }

    /// Empties the index along with the list, and frees its memory when the outermost call ends.
    void forget();

private:
    friend class CacheScope;

    static constexpr quint64 noPage = ~quint64 { 0 };

    // Room for every address: 27 bits beside 3 of the type and 32 of the station. Never all ones.
    static quint64 pageNumber(const RegisterKey &key)
    {
        const quint64 owner =
            quint64 { static_cast<quint32>(key.station) } * 8 + static_cast<quint32>(key.type);
        return owner << 27 | static_cast<quint32>(key.address) / pageRegisters;
    }

    void beginCall();
    void endCall();
    Page &turnTo(quint64 number);
    void learn();
    void dropPages();

    void letGo()
    {
        if (m_isWatching)
            m_seen = {};
        m_isWatching = false;
    }

    void distrust()
    {
        ++m_generation;
        m_isComplete = false;
    }

    std::unordered_map<quint64, Page> m_pages;
    quint64 m_lastNumber = noPage;
    Page *m_lastPage = nullptr;
    _DATA_ m_fresh; // the record appended last, zeroed but for its key
    quint64 m_generation = 1; // grows whenever the host may have touched the list
    bool m_isComplete = false; // every record of the list is on its page
    bool m_isForgotten = false; // the pages are to be freed
    bool m_hasMissed = false; // a record was missing in this call
    bool m_isWatching = false; // m_seen was taken
    QList<_DATA_> m_seen; // shares with driver.dataAreas while nobody touched that
    int m_pause = 0; // calls that the last touch was answered with
    int m_callsToPause = 0; // left of them
    int m_depth = 0; // nested CacheScope
};

extern DataAreaIndex dataAreaIndex;

/// Scope of a call that looks into the cache or writes to it. Calls nest when a callback calls back
/// in.
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
        else
            dataAreaIndex.noteHostCalled(); // goes on in its callback
    }
    CacheScope(const CacheScope &) = delete;
    CacheScope &operator=(const CacheScope &) = delete;
};

/// The records of driver.dataAreas as they stand; for as long as no list is edited and the host is
/// not called.
class CachedRecords {
public:
    CachedRecords()
        : m_first(std::as_const(driver.dataAreas).constBegin())
        , m_size(static_cast<unsigned>(driver.dataAreas.size()))
    {
    }

    /// Whether the record with this key stands at a position.
    bool hasAt(int position, int station, const QString &regType, int address) const
    {
        return static_cast<unsigned>(position) < m_size
            && hasKey(at(position), station, regType, address);
    }

    const _DATA_ &at(int position) const { return *(m_first + position); }

private:
    QList<_DATA_>::const_iterator m_first;
    unsigned m_size;
};

/// Fewer on a page are looked at one by one.
inline constexpr int registersWorthACheck = 8;

/// Whether the list is still as it was before a record was visited.
enum class Visited { Untouched, ListTouched };

/// Looks at the record of each register of a run, in order; a missing one is created first. Needs a
/// CacheScope that outlives it.
///
/// @param run    its type is one of the six
/// @param visit  called with the number of the register in the run, the position of its record and
///               the record; tells whether it edited a record or called the host
template <typename Visit> void visitRecords(const RegisterRange &run, Visit visit)
{
    const QString &name = REG_LIST[run.type];
    for (int i = 0; i < run.count;) {
        const RegisterKey first { run.station, run.type, wrapAdd(run.address, i) };
        DataAreaIndex::Page &page = dataAreaIndex.pageOf(first);
        const auto place = static_cast<int>(DataAreaIndex::placeOnPage(first.address));
        const int end = i + std::min(run.count - i, DataAreaIndex::pageRegisters - place);
        if (end - i >= registersWorthACheck && !dataAreaIndex.isTrusted(page))
            dataAreaIndex.check(page, first);
        const qint32 *known = page.positions.data() + place;
        while (i < end) {
            const CachedRecords records;
            const bool isTrusted = dataAreaIndex.isTrusted(page);
            Visited visited = Visited::Untouched;
            for (; isTrusted && i < end && *known >= 0 && visited == Visited::Untouched;
                 ++known, ++i)
                visited = visit(i, *known, records.at(*known));
            if (i == end || visited == Visited::ListTouched)
                continue;
            const RegisterKey key { run.station, run.type, wrapAdd(run.address, i) };
            const bool isThere = records.hasAt(*known, key.station, name, key.address);
            const int position = isThere ? *known : dataAreaIndex.findOrAppend(key);
            visit(i, position, isThere ? records.at(position) : CachedRecords().at(position));
            ++known;
            ++i;
        }
    }
}

} // namespace dx4
