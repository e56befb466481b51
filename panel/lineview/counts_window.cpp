// SPDX-License-Identifier: MIT
// What was counted on the line: in all, and in the last minute.
#include "panel/lineview/counts_window.h"

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

SpanCounts spanOf(const host::LineCounters &counters)
{
    return { counters.counts.blocks(), counters.span, counters.counts.lineDowns() };
}

std::map<int, quint64> minus(std::map<int, quint64> after, const std::map<int, quint64> &before)
{
    for (const auto &[code, count] : before)
        after[code] -= count;
    return after;
}

host::RequestCounts minus(host::RequestCounts after, const host::RequestCounts &before)
{
    constexpr quint64 host::RequestCounts::*figures[] = {
        &host::RequestCounts::requests,      &host::RequestCounts::good,
        &host::RequestCounts::timeouts,      &host::RequestCounts::truncated,
        &host::RequestCounts::badCrc,        &host::RequestCounts::foreign,
        &host::RequestCounts::wrongReplies,  &host::RequestCounts::retries,
        &host::RequestCounts::giveUps,       &host::RequestCounts::notAsked,
        &host::RequestCounts::withheld,      &host::RequestCounts::lateReplies,
        &host::RequestCounts::echoes,        &host::RequestCounts::echoProbes,
        &host::RequestCounts::clearingReads, &host::RequestCounts::junkBytes,
        &host::RequestCounts::bytesSent,     &host::RequestCounts::bytesReceived,
    };
    for (const auto figure : figures)
        after.*figure -= before.*figure;
    after.exceptions = minus(std::move(after.exceptions), before.exceptions);
    for (std::size_t i = 0; i < after.turnaround.size(); ++i)
        after.turnaround[i] -= before.turnaround[i];
    after.busy -= before.busy;
    return after;
}

} // namespace

host::RequestCounts SpanCounts::station(int station) const
{
    host::RequestCounts sum;
    for (const auto &[key, counts] : blocks) {
        if (key.station == station)
            sum.add(counts);
    }
    return sum;
}

host::RequestCounts SpanCounts::total() const
{
    host::RequestCounts sum;
    for (const auto &[key, counts] : blocks)
        sum.add(counts);
    return sum;
}

double SpanCounts::load() const
{
    if (span <= host::Duration(0))
        return 0.0;
    const double share =
        static_cast<double>(total().busy.count()) / static_cast<double>(span.count());
    return std::clamp(share, 0.0, 1.0);
}

void CountsWindow::note(const host::LineCounters &counters)
{
    SpanCounts now = spanOf(counters);
    const bool isNewLine = now.span < m_whole.span;
    if (isNewLine)
        m_samples.clear();
    while (m_samples.size() > 1 && now.span - m_samples[1].span >= window)
        m_samples.pop_front();
    m_recent = m_samples.empty() ? now : between(m_samples.front(), now);
    if (m_samples.empty())
        m_samples.push_back({});
    if (now.span - m_samples.back().span >= sampleEvery)
        m_samples.push_back(now);
    m_whole = std::move(now);
}

SpanCounts between(const SpanCounts &before, const SpanCounts &after)
{
    SpanCounts result = after;
    result.span -= before.span;
    result.lineDowns -= before.lineDowns;
    for (const auto &[key, counts] : before.blocks) {
        const auto found = result.blocks.find(key);
        if (found != result.blocks.end())
            found->second = minus(found->second, counts);
    }
    return result;
}

quint64 exceptionsOf(const host::RequestCounts &counts)
{
    quint64 sum = 0;
    for (const auto &[code, count] : counts.exceptions)
        sum += count;
    return sum;
}

quint64 failuresOf(const host::RequestCounts &counts)
{
    return counts.timeouts + counts.truncated + counts.badCrc + counts.foreign + counts.wrongReplies
        + exceptionsOf(counts);
}

} // namespace dx4::panel
