// SPDX-License-Identifier: MIT
// The signals that ask a program to end, turned into something its loop can see.
#include "host/writes/stop_signal.h"

#include "host/line/timespec.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace dx4::host {
namespace {

constexpr std::array stopSignals { SIGINT, SIGTERM, SIGHUP };

// What the handler touches, on whichever thread it runs. The descriptor is kept for the life of the
// process: a late handler that wrote to a closed one could write to a port that got its number.
std::atomic<int> firstSignal { 0 };
std::atomic<int> arrivals { 0 };
std::atomic<int> wakeUp { -1 };
static_assert(std::atomic<int>::is_always_lock_free);

int users = 0;
std::array<struct sigaction, stopSignals.size()> formerActions;

void noteSignal(int number)
{
    const int savedError = errno; // of the call that was interrupted
    int none = 0;
    firstSignal.compare_exchange_strong(none, number);
    ++arrivals;
    const std::uint64_t one = 1;
    // A full counter is readable already; there is nobody to tell of another failure.
    [[maybe_unused]] const auto written = write(wakeUp.load(), &one, sizeof one);
    errno = savedError;
}

void install()
{
    firstSignal = 0;
    arrivals = 0;
    if (wakeUp < 0)
        wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::uint64_t earlier = 0;
    [[maybe_unused]] const auto taken = read(wakeUp, &earlier, sizeof earlier);
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART; // reads and writes of the rest of the program go on
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < stopSignals.size(); ++i) {
        sigaction(stopSignals[i], nullptr, &formerActions[i]);
        if (formerActions[i].sa_handler != SIG_IGN)
            sigaction(stopSignals[i], &action, nullptr);
    }
}

void remove()
{
    for (std::size_t i = 0; i < stopSignals.size(); ++i)
        sigaction(stopSignals[i], &formerActions[i], nullptr);
}

} // namespace

StopSignal::StopSignal()
{
    if (users++ == 0)
        install();
}

StopSignal::~StopSignal()
{
    if (--users == 0)
        remove();
}

int StopSignal::number() const
{
    return firstSignal;
}

int StopSignal::count() const
{
    return arrivals;
}

void StopSignal::wait(Duration span)
{
    const timespec time = toTimespec(std::max(span, Duration { 0 }));
    if (m_hasWoken) {
        nanosleep(&time, nullptr);
        return;
    }
    pollfd wake = {};
    wake.fd = wakeUp;
    wake.events = POLLIN;
    ppoll(&wake, 1, &time, nullptr);
    m_hasWoken = hasCome();
}

int StopSignal::descriptor() const
{
    return wakeUp;
}

} // namespace dx4::host
