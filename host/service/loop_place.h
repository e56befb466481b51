// SPDX-License-Identifier: MIT
// The event loop of a thread as the place of a line.
#pragma once

#include "host/base/own_descriptor.h"
#include "host/service/fiber.h"
#include "host/service/place.h"

#include <QSocketNotifier>

#include <optional>

namespace dx4::host {

/// Runs a line beside all else that the event loop of this thread has to do: whenever the line
/// waits, the loop goes on.
///
/// Made, used and destroyed on that thread. The line's code has a stack of its own, turns no event
/// loop and does not destroy its place.
class LoopPlace : public Place, private Waits {
public:
    /// Throws std::system_error where the process may open no more descriptors.
    ///
    /// @param stackSize  bytes, for the line's code
    explicit LoopPlace(std::size_t stackSize);

    Waits &waits() override { return *this; }

    /// The loop begins with it.
    void start(std::function<void()> run) override;

    /// Has the rest of it wait as on a thread of its own: the loop stands still until it has ended.
    void join() override;

    /// Bytes of the stack that have been used at most; 0 before the start and after the end.
    std::size_t deepestStack() const;

private:
    short forEvents(int descriptor, short events, Duration deadline) override;
    void until(Duration moment) override;
    void giveWay() override;

    void leaveUntil(Duration moment);
    void wakeAt(Duration moment);
    void goOn();

    const std::size_t m_stackSize;
    const OwnDescriptor m_timer;
    const OwnDescriptor m_watched; ///< readable when the line can go on: the time came, or an event
    QSocketNotifier m_notifier; ///< of it
    std::optional<Fiber> m_fiber;
    bool m_hasLeft = false; ///< since it last gave way
    bool m_isJoining = false;
};

} // namespace dx4::host
