// SPDX-License-Identifier: MIT
// What was counted on the line: in all, and in the last minute.
#pragma once

#include "host/exchange/counters.h"

#include <deque>
#include <map>

namespace dx4::panel {

/// Counts by block.
using BlockCounts = std::map<host::BlockKey, host::RequestCounts>;

/// What was counted in a span of time.
struct SpanCounts {
    BlockCounts blocks;
    host::Duration span { 0 };
    quint64 lineDowns = 0;

    host::RequestCounts station(int station) const;
    host::RequestCounts total() const;

    /// Share of the time in which the line was held, 0 to 1.
    double load() const;
};

/// Makes the last minute of counts that grow. A fault of this morning that is mended must not be
/// told as one of now.
class CountsWindow {
public:
    static constexpr host::Duration window = std::chrono::minutes(1);
    static constexpr host::Duration sampleEvery = std::chrono::seconds(5);

    /// Takes what the line has counted. Counts that are smaller than before are those of a line
    /// that was begun anew.
    void note(const host::LineCounters &counters);

    const SpanCounts &whole() const { return m_whole; }

    /// Since a minute ago, or since the beginning where that is less.
    const SpanCounts &recent() const { return m_recent; }

private:
    SpanCounts m_whole;
    SpanCounts m_recent;
    std::deque<SpanCounts> m_samples; // oldest first
};

/// What was counted from one moment to another.
SpanCounts between(const SpanCounts &before, const SpanCounts &after);

/// Requests that failed, by any cause.
quint64 failuresOf(const host::RequestCounts &counts);

quint64 exceptionsOf(const host::RequestCounts &counts);

} // namespace dx4::panel
