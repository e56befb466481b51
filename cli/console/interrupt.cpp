// SPDX-License-Identifier: MIT
// The signals and the reader that has gone, noted for the loop that runs.
#include "cli/console/interrupt.h"

#include "cli/console/standard_streams.h"
#include "host/writes/stop_signal.h"

#include <atomic>
#include <csignal>
#include <optional>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

std::optional<host::StopSignal> stopSignal;
std::function<void()> leaveScreen;
std::function<void()> comeBackToScreen;

// What the handlers touch.
std::atomic<bool> quitCame { false };
std::atomic<bool> suspendCame { false };

void noteQuit(int)
{
    quitCame = true;
}

void noteSuspend(int)
{
    suspendCame = true;
}

/// A signal that is ignored stays ignored: shells without job control want it so.
void handle(int number, void (*handler)(int), int flags)
{
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

} // namespace

void watchForInterrupt()
{
    if (stopSignal)
        return;
    stopSignal.emplace();
    handle(SIGQUIT, noteQuit, SA_RESTART | static_cast<int>(SA_RESETHAND));
    handle(SIGTSTP, noteSuspend, SA_RESTART);
}

void ignoreBrokenPipe()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool interrupted()
{
    return quitCame || (stopSignal && stopSignal->hasCome());
}

bool quitAsked()
{
    return quitCame;
}

int signalsSoFar()
{
    return (stopSignal ? stopSignal->count() : 0) + (quitCame ? 1 : 0);
}

bool suspendAsked()
{
    return suspendCame;
}

void suspendIfAsked()
{
    if (!suspendCame)
        return;
    if (leaveScreen)
        leaveScreen();
    settleStreams();
    suspendCame = false;
    // By the signal's own effect, which a shell without job control has no use for.
    handle(SIGTSTP, SIG_DFL, 0);
    raise(SIGTSTP);
    handle(SIGTSTP, noteSuspend, SA_RESTART);
    if (comeBackToScreen)
        comeBackToScreen();
}

void onSuspend(std::function<void()> leave, std::function<void()> comeBack)
{
    leaveScreen = std::move(leave);
    comeBackToScreen = std::move(comeBack);
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
