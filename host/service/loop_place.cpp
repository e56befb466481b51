// SPDX-License-Identifier: MIT
// The event loop of a thread as the place of a line.
#include "host/service/loop_place.h"

#include "host/line/timespec.h"

#include <QScopeGuard>

#include <cstdint>
#include <utility>

#include <poll.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>

namespace dx4::host {
namespace {

/// Watches a descriptor, or watches it no more.
void watch(const OwnDescriptor &watched, int operation, int descriptor, short events)
{
    epoll_event wanted {};
    wanted.events = static_cast<std::uint32_t>(events); // they have the numbers of poll()
    epoll_ctl(watched.number(), operation, descriptor, &wanted);
}

} // namespace

LoopPlace::LoopPlace(std::size_t stackSize)
    : m_stackSize(stackSize)
    , m_timer(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd_create")
    , m_watched(epoll_create1(EPOLL_CLOEXEC), "epoll_create1")
    , m_notifier(m_watched.number(), QSocketNotifier::Read)
{
    watch(m_watched, EPOLL_CTL_ADD, m_timer.number(), EPOLLIN);
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { goOn(); });
}

void LoopPlace::start(std::function<void()> run)
{
    m_fiber.emplace(std::move(run), m_stackSize);
    wakeAt(steadyNow());
}

void LoopPlace::join()
{
    m_isJoining = true;
    while (!m_fiber->hasEnded())
        m_fiber->resume();
}

std::size_t LoopPlace::deepestStack() const
{
    return m_fiber ? m_fiber->deepest() : 0;
}

/// The loop may have other things to do when the moment or the event comes: both are looked at
/// again, and the event goes first.
short LoopPlace::forEvents(int descriptor, short events, Duration deadline)
{
    for (;;) {
        const short ready =
            blockingWaits().forEvents(descriptor, events, m_isJoining ? deadline : Duration { 0 });
        if (ready != 0 || steadyNow() >= deadline)
            return ready;
        watch(m_watched, EPOLL_CTL_ADD, descriptor, events);
        leaveUntil(deadline);
        watch(m_watched, EPOLL_CTL_DEL, descriptor, events);
    }
}

void LoopPlace::until(Duration moment)
{
    while (!m_isJoining && steadyNow() < moment)
        leaveUntil(moment);
    blockingWaits().until(moment);
}

/// A wait has given way as well.
void LoopPlace::giveWay()
{
    if (!m_hasLeft && !m_isJoining)
        leaveUntil(steadyNow());
    m_hasLeft = false;
}

/// Has the loop go on, until that moment or a watched event.
void LoopPlace::leaveUntil(Duration moment)
{
    m_hasLeft = true;
    wakeAt(moment);
    m_fiber->suspend();
}

void LoopPlace::wakeAt(Duration moment)
{
    itimerspec timer {};
    timer.it_value = toTimespec(moment);
    timerfd_settime(m_timer.number(), TFD_TIMER_ABSTIME, &timer, nullptr);
}

void LoopPlace::goOn()
{
    const auto beSilent = qScopeGuard([this] { m_notifier.setEnabled(!m_fiber->hasEnded()); });
    m_fiber->resume();
}

} // namespace dx4::host
