// SPDX-License-Identifier: MIT
// What ends dx4-sim from outside its loop: signals, and a stream that it cannot do without.
#include "simulator/end_request.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace dx4::sim {

namespace {

// What the handlers and other threads touch.
std::atomic<bool> endAsked { false };
std::atomic<bool> suspendCame { false };

void noteEnd(int)
{
    endAsked = true;
}

void noteSuspend(int)
{
    suspendCame = true;
}

bool isIgnored(int number)
{
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

void handle(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

void handleUnlessIgnored(int number, void (*handler)(int))
{
    if (!isIgnored(number))
        handle(number, handler);
}

} // namespace

EndRequest::EndRequest()
    : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int number : { SIGINT, SIGTERM, SIGHUP, SIGTSTP })
        sigaddset(&blocked, number);
    sigprocmask(SIG_BLOCK, &blocked, &m_former);
    for (const int number : { SIGINT, SIGTERM, SIGHUP, SIGTSTP })
        sigdelset(&m_former, number);
    handle(SIGINT, noteEnd);
    handle(SIGTERM, noteEnd);
    handleUnlessIgnored(SIGHUP, noteEnd);
    handleUnlessIgnored(SIGTSTP, noteSuspend);
}

EndRequest::~EndRequest()
{
    close(m_descriptor);
}

void EndRequest::ask()
{
    endAsked = true;
    const std::uint64_t one = 1;
    // It can only be full, and is readable then.
    [[maybe_unused]] const ssize_t written = write(m_descriptor, &one, sizeof one);
}

bool EndRequest::asked() const
{
    return endAsked;
}

bool EndRequest::suspendAsked() const
{
    return suspendCame;
}

void EndRequest::suspend()
{
    suspendCame = false;
    sigset_t suspension;
    sigemptyset(&suspension);
    sigaddset(&suspension, SIGTSTP);
    handle(SIGTSTP, SIG_DFL);
    raise(SIGTSTP);
    sigprocmask(SIG_UNBLOCK, &suspension, nullptr); // stops here
    sigprocmask(SIG_BLOCK, &suspension, nullptr);
    handle(SIGTSTP, noteSuspend);
}

} // namespace dx4::sim
