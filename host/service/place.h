// SPDX-License-Identifier: MIT
// Where a line is run.
#pragma once

#include "host/line/waits.h"

#include <functional>
#include <thread>

namespace dx4::host {

/// Runs the code of one line, which is written straight on and waits in the midst of itself.
class Place {
public:
    Place() = default;
    virtual ~Place() = default;
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;

    /// How the code waits that is run here.
    virtual Waits &waits() = 0;

    /// Begins to run this and returns at once. Called once.
    virtual void start(std::function<void()> run) = 0;

    /// Waits until that has ended. Called before the place ends.
    virtual void join() = 0;
};

/// A thread of the line's own.
class OwnThread : public Place {
public:
    Waits &waits() override { return blockingWaits(); }
    void start(std::function<void()> run) override;
    void join() override { m_thread.join(); }

private:
    std::thread m_thread; // not Qt's: race checkers cannot see how that one is joined
};

} // namespace dx4::host
