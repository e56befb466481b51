// SPDX-License-Identifier: MIT
// Where the simulator takes its time from: the machine, or a test that sets it.
#pragma once

#include <chrono>

namespace dx4::sim {

/// Times and durations of the simulator; times count from the clock's own start.
using Micros = std::chrono::microseconds;

/// Source of time. Never goes backwards.
class Clock {
public:
    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;
    virtual ~Clock() = default;

    /// Time since the clock's start.
    virtual Micros now() const = 0;
};

/// Stands still until it is told to go on, so that a test gives the same bytes every time.
class VirtualClock : public Clock {
public:
    Micros now() const override { return m_now; }

    /// Goes on by `step`; a negative one is ignored.
    void advance(Micros step) { advanceTo(m_now + step); }

    /// Goes on to `time`; an earlier one is ignored.
    void advanceTo(Micros time)
    {
        if (time > m_now)
            m_now = time;
    }

private:
    Micros m_now { 0 };
};

/// Time of the machine since construction; not affected by a change of the date.
class SteadyClock : public Clock {
public:
    Micros now() const override
    {
        return std::chrono::duration_cast<Micros>(std::chrono::steady_clock::now() - m_start);
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace dx4::sim
