// SPDX-License-Identifier: MIT
// The lower bound's cache: open addressing with linear probing, at most three quarters full.
#include "record_table.h"

namespace bench {
namespace {

constexpr std::size_t smallestTable = 32;
constexpr int unknownType = -1;

const QString names[] = { QLatin1String("F"),   QLatin1String("D"),  QLatin1String("CW"),
                          QLatin1String("FRE"), QLatin1String("SW"), QLatin1String("FU") };

quint32 hashOf(const Device &device, int address)
{
    quint64 bits = static_cast<quint32>(device.station) * 8U + static_cast<quint32>(device.type);
    bits = (bits << 32 | static_cast<quint32>(address)) * 0x9E3779B97F4A7C15U;
    return static_cast<quint32>(bits >> 32);
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

Device deviceOf(int station, int type)
{
    return { station, type, names[type].constData() };
}

void RecordTable::clear()
{
    m_records.clear();
    m_records.shrink_to_fit();
    m_slots.clear();
    m_slots.shrink_to_fit();
}

int RecordTable::search(const Device &device, int address)
{
    const quint32 hash = hashOf(device, address);
    if (!m_slots.empty()) {
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask; m_slots[i].position >= 0; i = (i + 1) & mask) {
            if (m_slots[i].hash == hash && holds(m_slots[i].position, device, address))
                return m_slots[i].position;
        }
    }
    auto record = std::make_unique<_DATA_>();
    record->station = device.station;
    record->regType = typeName(device.type);
    record->address = address;
    m_records.push_back(std::move(record));
    if (m_records.size() * 4 > m_slots.size() * 3)
        grow();
    place({ hash, size() - 1 });
    return size() - 1;
}

void RecordTable::place(Slot slot)
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = slot.hash & mask;
    while (m_slots[i].position >= 0)
        i = (i + 1) & mask;
    m_slots[i] = slot;
}

void RecordTable::grow()
{
    const std::vector<Slot> old = std::move(m_slots);
    m_slots.assign(old.empty() ? smallestTable : 2 * old.size(), Slot { 0, -1 });
    for (const Slot &slot : old) {
        if (slot.position >= 0)
            place(slot);
    }
}

} // namespace bench
