// SPDX-License-Identifier: MIT
// What happened on a line, per station and block: one set for every user of the host.
#pragma once

#include "host/exchange/exchange.h"

#include <QJsonObject>

#include <array>
#include <map>
#include <tuple>

namespace dx4::host {

/// A run of registers and how it is served; the key of the counters.
struct BlockKey {
    int station = 0;
    QString regType;
    int address = 0; ///< internal address of the first register
    int count = 0; ///< registers
    bool isWrite = false;

    bool operator<(const BlockKey &other) const
    {
        return std::tie(station, regType, address, count, isWrite)
            < std::tie(other.station, other.regType, other.address, other.count, other.isWrite);
    }
};

/// The block that a request serves.
BlockKey blockOf(const FRAME_PRO &request);

/// Upper bounds of the turnaround histogram, in ms; one more class counts what is above.
inline constexpr std::array<int, 10> turnaroundBounds = {
    1, 2, 5, 10, 20, 50, 100, 200, 500, 1000
};

/// Counts of one block, or of several added up.
struct RequestCounts {
    quint64 requests = 0; ///< frames sent, repeated ones included
    quint64 good = 0; ///< answered: in every byte where a guard looks, else to the driver's liking
    quint64 timeouts = 0; ///< no byte until the deadline
    quint64 truncated = 0; ///< a reply that ended early
    quint64 badCrc = 0;
    quint64 foreign = 0; ///< only another station's reply came
    quint64 wrongReplies = 0; ///< right station, but function, length or echo of another request
    std::map<int, quint64> exceptions; ///< by code
    quint64 retries = 0; ///< requests that are sent again
    quint64 giveUps = 0; ///< requests that used up their tries
    quint64 notAsked = 0; ///< failed without using the line
    quint64 withheld = 0; ///< not sent, because a reply that is owed could pass for theirs
    quint64 lateReplies = 0;
    quint64 echoes = 0; ///< the adapter's own, stripped
    quint64 echoProbes = 0; ///< the guard's own reads, to learn of an echo; not among the requests
    quint64 clearingReads = 0; ///< the guard's own, to learn what is still owed; not counted either
    quint64 junkBytes = 0; ///< skipped
    quint64 bytesSent = 0;
    quint64 bytesReceived = 0; ///< while a reply was awaited
    std::array<quint64, turnaroundBounds.size() + 1> turnaround = {}; ///< good and exceptions
    Duration busy { 0 }; ///< time that the line was held

    void add(const RequestCounts &other);
    QJsonObject toJson() const;
};

/// Counts everything that passes one line.
class CounterSet {
public:
    /// Counts one exchange that used the line.
    void countExchange(const FRAME_PRO &request, const ExchangeReport &report, Duration held);

    /// Counts a request that was not sent for what its station owes.
    void countWithheld(const FRAME_PRO &request, const ExchangeReport &report, Duration held);
    /// Counts a probe of a station that is left alone, as a read of its status word.
    void countProbe(int station, const ExchangeReport &report, Duration held);

    /// Counts what became of the request.
    void countRetry(const FRAME_PRO &request) { ++m_blocks[blockOf(request)].retries; }
    void countGiveUp(const FRAME_PRO &request);
    void countNotAsked(const FRAME_PRO &request);
    void countLineDown() { ++m_lineDowns; }

    RequestCounts block(const BlockKey &key) const;
    const std::map<BlockKey, RequestCounts> &blocks() const { return m_blocks; }
    RequestCounts station(int station) const; ///< all blocks of a station
    RequestCounts reads() const; ///< all blocks that are read
    RequestCounts writes() const; ///< all blocks that are written
    RequestCounts total() const;

    /// Reads that have ended: answered, given up, or not asked at all. Asked for at every step, so
    /// it is kept and not added up.
    quint64 endedReads() const { return m_endedReads; }

    /// Requests that were sent, repeated ones included, and those that were not asked; kept too.
    quint64 attempts() const { return m_attempts; }
    quint64 lineDowns() const { return m_lineDowns; } ///< exchanges ended by the line itself

    /// Share of the time since `since` in which the line was held, 0 to 1.
    double lineLoad(Duration since, Duration now) const;

    /// Everything: "line", "total" and per station its "total" and "blocks".
    QJsonObject toJson(Duration since, Duration now) const;

private:
    void countEnd(const FRAME_PRO &request);
    template <typename Wanted> RequestCounts sumOf(Wanted wanted) const;

    std::map<BlockKey, RequestCounts> m_blocks;
    quint64 m_lineDowns = 0;
    quint64 m_endedReads = 0;
    quint64 m_attempts = 0;
};

/// What was counted in a span of time.
struct LineCounters {
    CounterSet counts;
    Duration span { 0 };

    double load() const { return counts.lineLoad({}, span); } ///< see CounterSet::lineLoad()
    QJsonObject toJson() const { return counts.toJson({}, span); }
};

} // namespace dx4::host
