// SPDX-License-Identifier: MIT
// What waits to be written into a journal.
#include "journal/keeper_queue.h"

#include "journal/history.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace dx4::journal {
namespace {

/// A clock that is set back by no more stands still instead: time servers correct by as much.
constexpr Time toleratedStepMs = 2 * secondMs;

Sample firstSample(const Series &series, int value, const Stamp &at)
{
    Sample sample;
    sample.series = series;
    sample.start = at.run;
    sample.time = rowBegin(at.time, secondMs);
    sample.lowest = value;
    sample.highest = value;
    return sample;
}

template <typename Element> std::vector<Element> takeFirst(std::deque<Element> &from, int most)
{
    const auto count = std::min(from.size(), static_cast<std::size_t>(most));
    const auto end = std::next(from.begin(), static_cast<std::ptrdiff_t>(count));
    std::vector<Element> taken(std::make_move_iterator(from.begin()), std::make_move_iterator(end));
    from.erase(from.begin(), end);
    return taken;
}

} // namespace

KeeperQueue::KeeperQueue(Clock clock, int mostEvents, int mostSamples)
    : m_clock(std::move(clock))
    , m_mostEvents(static_cast<std::size_t>(mostEvents))
    , m_mostSamples(static_cast<std::size_t>(mostSamples))
{
}

Stamp KeeperQueue::stamp()
{
    const Time time = m_clock();
    if (time < m_now.time - toleratedStepMs)
        m_now = { m_now.run + 1, time };
    m_now.time = std::max(m_now.time, time);
    return m_now;
}

void KeeperQueue::put(Event event)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Stamp now = stamp();
    event.start = now.run;
    event.time = now.time;
    m_events.push_back(std::move(event));
    if (m_events.size() <= m_mostEvents)
        return;
    noteLoss(m_events.front().time, 1, 0);
    m_events.pop_front();
}

void KeeperQueue::put(const Series &series, int value, Quality quality, int changes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Stamp now = stamp();
    endSecond(now);
    Sample &sample = m_second.emplace(series, firstSample(series, value, now)).first->second;
    sample.lowest = std::min(sample.lowest, value);
    sample.highest = std::max(sample.highest, value);
    sample.last = value;
    sample.count += changes;
    sample.quality = std::max(sample.quality, quality);
}

/// All samples of m_second are of one second.
void KeeperQueue::endSecond(const Stamp &now)
{
    const bool isOver = !m_second.empty()
        && (m_second.begin()->second.start != now.run
            || m_second.begin()->second.time != rowBegin(now.time, secondMs));
    if (!isOver)
        return;
    for (auto &[series, sample] : m_second)
        push(std::move(sample));
    m_second.clear();
}

void KeeperQueue::push(Sample sample)
{
    m_samples.push_back(std::move(sample));
    if (m_samples.size() <= m_mostSamples)
        return;
    noteLoss(m_samples.front().time, 0, m_samples.front().count);
    m_samples.pop_front();
}

void KeeperQueue::noteLoss(Time time, int events, int values)
{
    for (Losses *losses : { &m_losses, &m_allLosses }) {
        if (losses->events == 0 && losses->values == 0)
            losses->first = time;
        losses->events += events;
        losses->values += values;
    }
}

void KeeperQueue::addWrite(const RegisterKey &key)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    WearCount &wear = m_wear[key];
    wear.at = key;
    ++wear.writes;
    wear.last = stamp().time;
}

Batch KeeperQueue::takeEvents(int most)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Batch batch;
    batch.events = takeFirst(m_events, most);
    batch.wear = std::exchange(m_wear, {});
    return batch;
}

Batch KeeperQueue::takeSamples(int most, bool isLast)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    endSecond(isLast ? Stamp {} : stamp());
    Batch batch;
    batch.samples = takeFirst(m_samples, most);
    return batch;
}

Losses KeeperQueue::takeLosses()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_losses, {});
}

Losses KeeperQueue::lostSoFar() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_allLosses;
}

int KeeperQueue::waiting() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_events.size() + m_samples.size() + m_second.size());
}

} // namespace dx4::journal
