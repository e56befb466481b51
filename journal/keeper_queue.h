// SPDX-License-Identifier: MIT
// What waits to be written into a journal.
#pragma once

#include "journal/journal.h"

#include <deque>
#include <functional>
#include <map>
#include <mutex>

namespace dx4::journal {

/// What there was no room for.
struct Losses {
    qint64 events = 0;
    qint64 values = 0;
    Time first = 0; ///< of what was lost first
};

/// Holds events and samples until they are written, no more than so many of each. Beyond that the
/// oldest goes and is counted; events never go for the sake of samples. How often registers were
/// written is added up and never goes. Any thread may make any call.
class KeeperQueue {
public:
    using Clock = std::function<Time()>;

    /// @param clock  time of day, UTC; may be set at any time
    KeeperQueue(Clock clock, int mostEvents, int mostSamples);

    /// Takes an event and gives it its time.
    void put(Event event);

    /// Takes what a register holds. All of one second becomes one sample.
    ///
    /// @param value    signed where the scaling says so
    /// @param changes  1, or 0 where it is as before
    void put(const Series &series, int value, Quality quality, int changes);

    /// Counts a register as written once more.
    void addWrite(const RegisterKey &key);

    /// Takes the earliest events, no more than so many, and all writes that were counted.
    Batch takeEvents(int most);

    /// Takes the earliest samples, no more than so many.
    ///
    /// @param isLast  also that of the second that is not over
    Batch takeSamples(int most, bool isLast);

    /// What was lost since the last call.
    Losses takeLosses();

    /// What was lost since the queue was made.
    Losses lostSoFar() const;

    /// Events and samples that wait.
    int waiting() const;

private:
    Stamp stamp();
    void endSecond(const Stamp &now);
    void push(Sample sample);
    void noteLoss(Time time, int events, int values);

    const Clock m_clock;
    const std::size_t m_mostEvents;
    const std::size_t m_mostSamples;
    mutable std::mutex m_mutex;
    Stamp m_now;
    std::deque<Event> m_events;
    std::deque<Sample> m_samples; ///< of seconds that are over
    std::map<Series, Sample> m_second; ///< of the one that is not
    std::map<RegisterKey, WearCount> m_wear;
    Losses m_losses; ///< not taken
    Losses m_allLosses;
};

} // namespace dx4::journal
