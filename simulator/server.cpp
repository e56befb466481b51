// SPDX-License-Identifier: MIT
// The loop of dx4-sim: port, commands, signals and time.
#include "simulator/server.h"

#include "simulator/talk.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace dx4::sim {

namespace {

// A frame that does not end by its length is over when nothing came for so long. A pseudo-terminal
// and its writer may pause within a frame, which a wire would not.
constexpr Micros longestPause { 20000 };

// A shell that brings a running program to the foreground tells it nothing.
constexpr Micros nextLookAtTheTerminal { 200000 };

// So much of the drives' time may be left to the next request.
constexpr Micros longestWait { 1000000 };

// What has no line end is no command, and must not fill the memory.
constexpr std::size_t longestCommand = 4096; // bytes

/// A program in the background that reads from its terminal is stopped.
bool isInputOurs()
{
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    return foreground < 0 || foreground == getpgrp();
}

timespec toTimespec(Micros time)
{
    timespec result {};
    result.tv_sec = static_cast<time_t>(time.count() / 1000000);
    result.tv_nsec = static_cast<long>(time.count() % 1000000 * 1000);
    return result;
}

} // namespace

Server::Server(Port &port, Cable &cable, Commands &commands, const Clock &clock, EndRequest &end)
    : m_port(port)
    , m_cable(cable)
    , m_commands(commands)
    , m_clock(clock)
    , m_end(end)
    , m_framer(std::max(cable.settings().frameGap(), longestPause))
{
}

void Server::run()
{
    while (!m_quit && !m_end.asked()) {
        if (m_end.suspendAsked())
            suspend();
        wait();
        passTime();
        servePort();
        if (m_inputReady)
            serveCommands();
    }
}

void Server::passTime()
{
    if (m_clock.now() - m_timePassed < longestWait)
        return;
    m_timePassed = m_clock.now();
    m_cable.passTime();
}

void Server::suspend()
{
    say("stopped; no station answers until it goes on");
    settleTalk();
    m_end.suspend();
    // The master has given up on what it asked meanwhile; an answer now would be taken for one to
    // its next request. Only then is it told, or what it asks at the word would be dropped as well.
    while (!m_port.read().empty()) { }
    m_framer.clear();
    say("goes on");
}

void Server::wait()
{
    std::optional<Micros> next = m_cable.nextByteAt();
    const std::optional<Micros> frameEnd = m_framer.endsAt();
    if (frameEnd)
        next = next ? std::min(*next, *frameEnd) : *frameEnd;
    const bool isInputWanted = m_inputOpen && isInputOurs();
    const Micros now = m_clock.now();
    const Micros atMost =
        now + (m_inputOpen && !isInputWanted ? nextLookAtTheTerminal : longestWait);
    const timespec timeout =
        toTimespec(std::max(std::min(next.value_or(atMost), atMost) - now, Micros(0)));

    std::array<pollfd, 3> waiting = { {
        { m_port.descriptor(), POLLIN, 0 },
        { isInputWanted ? STDIN_FILENO : -1, POLLIN, 0 },
        { m_end.descriptor(), POLLIN, 0 },
    } };
    const int ready = ppoll(waiting.data(), waiting.size(), &timeout, &m_end.waitMask());
    if (ready < 0 && errno != EINTR)
        throw std::system_error(errno, std::generic_category(), "poll");
    m_portReady = ready > 0 && waiting[0].revents != 0;
    m_inputReady = ready > 0 && waiting[1].revents != 0;
}

void Server::servePort()
{
    if (m_portReady)
        m_framer.push(m_port.read(), m_clock.now());
    while (const std::optional<Bytes> frame = m_framer.take(m_clock.now()))
        m_cable.send(*frame);
    m_port.write(m_cable.receive());
}

void Server::serveCommands()
{
    char part[512];
    const ssize_t count = ::read(STDIN_FILENO, part, sizeof part);
    if (count <= 0) {
        m_inputOpen = count < 0 && errno == EINTR;
        return;
    }
    m_typed.append(part, static_cast<std::size_t>(count));
    for (std::size_t end; !m_quit && (end = m_typed.find('\n')) != std::string::npos;) {
        if (std::exchange(m_isTooLong, false))
            say("a command of more than " + std::to_string(longestCommand) + " bytes was not run");
        else
            m_quit = !m_commands.run(m_typed.substr(0, end));
        m_typed.erase(0, end + 1);
    }
    if (m_typed.size() > longestCommand) {
        m_typed.clear();
        m_isTooLong = true;
    }
}

} // namespace dx4::sim
