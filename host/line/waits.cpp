// SPDX-License-Identifier: MIT
// How the code of a line lets time pass.
#include "host/line/waits.h"

#include "host/line/timespec.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <iterator>

namespace dx4::host {
namespace {

/// Lets the system wait.
class BlockingWaits : public Waits {
public:
    short forEvents(int descriptor, short events, Duration deadline) override
    {
        pollfd watched[] = { { descriptor, events, {} } };
        int ready = -1;
        do {
            const timespec span = toTimespec(std::max(deadline - steadyNow(), Duration { 0 }));
            ready = ppoll(watched, std::size(watched), &span, nullptr);
        } while (ready == -1 && errno == EINTR); // a signal is no reason to give up on a reply
        return watched->revents;
    }

    void until(Duration moment) override
    {
        const timespec end = toTimespec(moment);
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR)
            ;
    }

    void giveWay() override { }
};

} // namespace

Waits &blockingWaits()
{
    static BlockingWaits waits;
    return waits;
}

Duration steadyNow()
{
    return std::chrono::duration_cast<Duration>(
        std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace dx4::host
