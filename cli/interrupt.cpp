// SPDX-License-Identifier: MIT
// Ctrl-C, a termination request and a reader that has gone, noted for the loop that runs.
#include "cli/interrupt.h"

#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

volatile std::sig_atomic_t signalSeen = 0;

void noteSignal(int)
{
    signalSeen = 1;
}

} // namespace

void watchForInterrupt()
{
    std::signal(SIGINT, noteSignal);
    std::signal(SIGTERM, noteSignal);
}

void ignoreBrokenPipe()
{
    std::signal(SIGPIPE, SIG_IGN);
}

bool interrupted()
{
    return signalSeen != 0;
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

} // namespace dx4::cli
