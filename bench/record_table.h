// SPDX-License-Identifier: MIT
// The lower bound's cache: records on the heap and a hash index over them.
#pragma once

#include "host_records.h"

#include <QString>

#include <array>
#include <memory>
#include <vector>

namespace bench {

/// Position of a name in the lower bound's own table; -1 for none of the six.
int typeCode(const QString &name);

/// The lower bound's shared string of a type.
const QString &typeName(int type);

/// Records found by (station, type, address), in order of creation, never removed one by one.
///
/// The index is a hash table of pages, each with the records of neighbouring addresses. Nobody else
/// writes to the records, so what the index says is true without a look at the record's key.
class RecordTable {
public:
    class Run;

    /// Forgets all records.
    void clear();

    int size() const { return static_cast<int>(m_records.size()); }
    _DATA_ &at(int position) { return *m_records[static_cast<std::size_t>(position)]; }

private:
    static constexpr int pageBits = 5;
    static constexpr int pageSize = 1 << pageBits;

    struct Page {
        int station;
        int type;
        int number; ///< address / pageSize
        std::array<_DATA_ *, pageSize> records;
    };

    Page *pageOf(int station, int type, int number);
    _DATA_ *create(Page &page, int address);
    void place(std::unique_ptr<Page> page);
    void grow();

    std::vector<std::unique_ptr<_DATA_>> m_records;
    std::vector<std::unique_ptr<Page>> m_slots;
    std::size_t m_pages = 0;
};

/// Finds the records of one station and type; created when they are missing.
class RecordTable::Run {
public:
    Run(RecordTable &table, int station, int type)
        : m_table(table)
        , m_station(station)
        , m_type(type)
    {
    }

    _DATA_ &operator[](int address)
    {
        const int number = address >> pageBits;
        if (!m_page || m_page->number != number)
            m_page = m_table.pageOf(m_station, m_type, number);
        _DATA_ *record = m_page->records[static_cast<unsigned>(address) % pageSize];
        return record ? *record : *m_table.create(*m_page, address);
    }

    /// Whoever was called may have changed the table: what was found is found again.
    void forget() { m_page = nullptr; }

private:
    RecordTable &m_table;
    int m_station;
    int m_type;
    Page *m_page = nullptr;
};

} // namespace bench
