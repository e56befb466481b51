// SPDX-License-Identifier: MIT
// Late stations behind a pseudo-terminal, in real time.
#include "pty_plant.h"

#include "host/line/timespec.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

using dx4::host::Duration;

namespace {

constexpr std::size_t remembered = 60; // frames of the history
constexpr int shortRequest = 8;
constexpr int byteCountOfWrite = 6; // position

/// The guard gives up on a reply after three seconds. What a thread that was not let run would send
/// later than this is lost.
constexpr Duration latest = std::chrono::seconds(2);

/// While nothing is on its way; a request ends the wait.
constexpr Duration idle = std::chrono::seconds(1);

/// Length of the request that begins so; 0 until that can be told.
int requestLength(const QByteArray &bytes)
{
    if (bytes.size() < shortRequest)
        return 0;
    const bool hasValues = bytes.at(1) == 16;
    return hasValues ? 9 + static_cast<unsigned char>(bytes.at(byteCountOfWrite)) : shortRequest;
}

dx4::host::LineSettings onTerminal(dx4::host::LineSettings settings, const PseudoTerminal &terminal)
{
    settings.port = terminal.path();
    return settings;
}

} // namespace

PtyPlant::PtyPlant(const dx4::host::LineSettings &settings, const LineHabit &line, Chance &chance)
    : m_line(onTerminal(settings, m_terminal))
    , m_stations(settings, line, chance)
    , m_spare(::open(m_terminal.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    EXPECT_EQ(pipe2(m_end, O_CLOEXEC), 0);
    EXPECT_TRUE(m_line.open(nullptr));
    m_thread = std::thread([this] { play(); });
}

PtyPlant::~PtyPlant()
{
    ::close(m_end[1]);
    m_thread.join();
    ::close(m_end[0]);
    ::close(m_spare);
}

void PtyPlant::addStation(int number, const LateHabit &habit)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stations.add(number, habit);
}

void PtyPlant::toggle(int station)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stations.setOff(station, !m_stations.habitOf(station).isOff, m_line.now());
}

int PtyPlant::ordinalOf(int station, int registerAddress) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stations.ordinalOf(station, registerAddress);
}

std::vector<CarriedOut> PtyPlant::carriedOut(int station) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stations.carriedOut(station);
}

std::string PtyPlant::history() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string text;
    for (const std::string &line : m_history)
        text += line;
    return text;
}

void PtyPlant::play()
{
    pollfd watched[2] = {};
    watched[0].fd = m_end[0];
    watched[1].fd = m_terminal.farEnd();
    watched[1].events = POLLIN;
    while (watched[0].revents == 0) {
        const timespec wait = dx4::host::toTimespec(answer());
        ppoll(watched, 2, &wait, nullptr);
        if ((watched[1].revents & POLLIN) != 0)
            listen();
    }
}

/// Sends what is due by now.
///
/// @return time until more is
Duration PtyPlant::answer()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Duration now = m_line.now();
    QByteArray bytes;
    while (const auto next = m_stations.nextBy(now)) {
        if (next->at > now - latest)
            bytes.append(next->byte);
        m_stations.takeNext();
    }
    if (!bytes.isEmpty()) {
        m_terminal.write(bytes);
        note("<-", bytes);
    }
    const Duration next = m_stations.nextAt().value_or(now + idle);
    return std::max(next - now, Duration { 0 });
}

/// The terminal has no speed: a request is over when it has had the time that it takes.
void PtyPlant::listen()
{
    char bytes[256];
    const ssize_t count = ::read(m_terminal.farEnd(), bytes, sizeof bytes);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_heard.append(bytes, static_cast<int>(std::max<ssize_t>(count, 0)));
    for (int length = requestLength(m_heard); length > 0 && m_heard.size() >= length;
         length = requestLength(m_heard)) {
        const QByteArray request = m_heard.left(length);
        m_heard.remove(0, length);
        note("->", request);
        m_stations.hear(request, m_line.now() + m_line.settings().wireTime(length));
    }
}

void PtyPlant::note(const char *what, const QByteArray &bytes)
{
    char time[40];
    std::snprintf(time, sizeof time, "%14.3f ms %s ",
                  static_cast<double>(m_line.now().count()) / 1000, what);
    m_history.push_back(time + bytes.toHex(' ').toStdString() + '\n');
    if (m_history.size() > remembered)
        m_history.pop_front();
}
