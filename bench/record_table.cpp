// SPDX-License-Identifier: MIT
// The lower bound's cache: pages in a table with linear probing, at most three quarters full.
#include "record_table.h"

namespace bench {
namespace {

constexpr std::size_t smallestTable = 32;
constexpr int unknownType = -1;

const QString names[] = { QLatin1String("F"),   QLatin1String("D"),  QLatin1String("CW"),
                          QLatin1String("FRE"), QLatin1String("SW"), QLatin1String("FU") };

std::size_t hashOf(int station, int type, int number)
{
    quint64 bits = static_cast<quint32>(station) * 8U + static_cast<quint32>(type);
    bits = (bits << 32 | static_cast<quint32>(number)) * 0x9E3779B97F4A7C15U;
    return bits >> 32;
}

} // namespace

int typeCode(const QString &name)
{
    const QChar first = name.isEmpty() ? QChar() : name.at(0);
    switch (name.size()) {
    case 1:
        return first == QLatin1Char('F') ? 0 : first == QLatin1Char('D') ? 1 : unknownType;
    case 2:
        if (name.at(1) == QLatin1Char('W'))
            return first == QLatin1Char('C') ? 2 : first == QLatin1Char('S') ? 4 : unknownType;
        return first == QLatin1Char('F') && name.at(1) == QLatin1Char('U') ? 5 : unknownType;
    case 3:
        return name == names[3] ? 3 : unknownType;
    default:
        return unknownType;
    }
}

const QString &typeName(int type)
{
    return names[type];
}

void RecordTable::clear()
{
    m_records.clear();
    m_records.shrink_to_fit();
    m_slots.clear();
    m_slots.shrink_to_fit();
    m_pages = 0;
}

RecordTable::Page *RecordTable::pageOf(int station, int type, int number)
{
    if (4 * (m_pages + 1) > 3 * m_slots.size())
        grow();
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = hashOf(station, type, number) & mask;
    for (; m_slots[i]; i = (i + 1) & mask) {
        Page *page = m_slots[i].get();
        if (page->number == number && page->station == station && page->type == type)
            return page;
    }
    m_slots[i].reset(new Page { station, type, number, {} });
    ++m_pages;
    return m_slots[i].get();
}

_DATA_ *RecordTable::create(Page &page, int address)
{
    auto record = std::make_unique<_DATA_>();
    record->station = page.station;
    record->regType = typeName(page.type);
    record->address = address;
    _DATA_ *created = record.get();
    page.records[static_cast<unsigned>(address) % pageSize] = created;
    m_records.push_back(std::move(record));
    return created;
}

void RecordTable::place(std::unique_ptr<Page> page)
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = hashOf(page->station, page->type, page->number) & mask;
    while (m_slots[i])
        i = (i + 1) & mask;
    m_slots[i] = std::move(page);
}

void RecordTable::grow()
{
    std::vector<std::unique_ptr<Page>> old = std::move(m_slots);
    m_slots = std::vector<std::unique_ptr<Page>>(old.empty() ? smallestTable : 2 * old.size());
    for (std::unique_ptr<Page> &page : old) {
        if (page)
            place(std::move(page));
    }
}

} // namespace bench
