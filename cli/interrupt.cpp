// SPDX-License-Identifier: MIT
// Ctrl-C, a termination request and a reader that has gone, noted for the loop that runs.
#include "cli/interrupt.h"

#include "host/stop_signal.h"

#include <csignal>
#include <optional>

#include <poll.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

std::optional<host::StopSignal> stopSignal;

} // namespace

void watchForInterrupt()
{
    if (!stopSignal)
        stopSignal.emplace();
}

void ignoreBrokenPipe()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool interrupted()
{
    return stopSignal && stopSignal->hasCome();
}

bool readerGone()
{
    pollfd output {};
    output.fd = STDOUT_FILENO;
    return poll(&output, 1, 0) > 0 && (output.revents & POLLERR);
}

bool shouldEnd()
{
    return interrupted() || readerGone();
}

void pauseFor(host::Duration span)
{
    watchForInterrupt();
    stopSignal->wait(span);
}

} // namespace dx4::cli
