// SPDX-License-Identifier: MIT
// How the code of a line lets time pass.
#pragma once

#include "host/line/line_settings.h"

namespace dx4::host {

/// The one place where the code of a line waits. Moments are those of the steady clock.
///
/// Others may have their turn in a wait, on the same thread: nothing waits while it holds a lock or
/// handles an exception, of which C++ keeps one list for each thread.
class Waits {
public:
    Waits() = default;
    virtual ~Waits() = default;
    Waits(const Waits &) = delete;
    Waits &operator=(const Waits &) = delete;

    /// Waits for events of poll() on a descriptor.
    ///
    /// @return the events that came; 0 at the deadline
    virtual short forEvents(int descriptor, short events, Duration deadline) = 0;

    /// Waits until the moment, and no shorter.
    virtual void until(Duration moment) = 0;

    /// Lets others have their turn who share the thread. For a line that has much to do and seldom
    /// waits.
    virtual void giveWay() = 0;
};

/// Waits of which the thread has nothing else to do.
Waits &blockingWaits();

/// The steady clock, as waits have it.
Duration steadyNow();

} // namespace dx4::host
