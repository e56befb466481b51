// SPDX-License-Identifier: MIT
// Ctrl-C and a termination request, noted for the loop that runs.
#include "cli/interrupt.h"

#include <csignal>

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

bool interrupted()
{
    return signalSeen != 0;
}

} // namespace dx4::cli
