// SPDX-License-Identifier: MIT
// The writes that have not ended, in the order in which they take effect.
#include "host/writes/write_queue.h"

#include <algorithm>

namespace dx4::host {
namespace {

constexpr int stationNumbers = 256; // of one byte

bool isSameRun(const WriteWish &a, const WriteWish &b)
{
    return a.station == b.station && a.regType == b.regType && a.address == b.address
        && a.values.size() == b.values.size();
}

/// How many stations have their turn before this one.
int stationsBefore(int station, int lastStation)
{
    return (station - lastStation - 1 + stationNumbers) % stationNumbers;
}

} // namespace

QueuedWrite *WriteQueue::find(int id)
{
    const auto found = m_writes.find(id);
    return found == m_writes.end() ? nullptr : &found->second;
}

QueuedWrite *WriteQueue::next()
{
    QueuedWrite *first = nullptr;
    int before = stationNumbers;
    for (auto &[id, write] : m_writes) {
        const int turn = stationsBefore(write.wish.station, m_lastStation);
        if (turn < before) {
            before = turn;
            first = &write;
        }
    }
    return first;
}

QVector<int> WriteQueue::replacedBy(const WriteWish &newer, bool isStop) const
{
    QVector<int> replaced;
    for (auto entry = m_writes.rbegin(); entry != m_writes.rend(); ++entry) {
        const QueuedWrite &write = entry->second;
        if (write.wish.station != newer.station)
            continue;
        if (isSameRun(write.wish, newer) && !write.handedOver)
            replaced.prepend(write.id);
        if (!isStop)
            break;
    }
    return replaced;
}

int WriteQueue::sizeOf(int station) const
{
    return static_cast<int>(
        std::count_if(m_writes.begin(), m_writes.end(), [station](const auto &entry) {
            return entry.second.wish.station == station;
        }));
}

std::optional<quint16> WriteQueue::waitingValue(int station, const QString &regType,
                                                int address) const
{
    for (auto entry = m_writes.rbegin(); entry != m_writes.rend(); ++entry) {
        const WriteWish &wish = entry->second.wish;
        const int offset = address - wish.address;
        const bool isInside = wish.station == station && wish.regType == regType && offset >= 0
            && offset < wish.values.size();
        if (isInside)
            return wish.values.at(offset);
    }
    return std::nullopt;
}

QVector<int> WriteQueue::ids() const
{
    QVector<int> ids;
    for (const auto &[id, write] : m_writes)
        ids.append(id);
    return ids;
}

} // namespace dx4::host
