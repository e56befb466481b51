// SPDX-License-Identifier: MIT
// A stream behind a thread of its own, so that its reader never holds up the line.
#include "common/output_stream.h"

#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>
#include <unistd.h>

namespace dx4::common {
namespace {

constexpr std::size_t mostAtOnce = 4096; // bytes; a pipe takes so many whole, or none
constexpr auto lookAgainAfter = std::chrono::milliseconds(50);

/// As many bytes as go out at once, up to the end of a line where there is one.
std::size_t pieceOf(const std::string &bytes)
{
    if (bytes.size() <= mostAtOnce)
        return bytes.size();
    const std::size_t lineEnd = bytes.rfind('\n', mostAtOnce - 1);
    return lineEnd == std::string::npos ? mostAtOnce : lineEnd + 1;
}

/// Streams live until the program ends; in hand, they are not taken for lost memory.
void keep(OutputStream *stream)
{
    static auto *const guard = new std::mutex;
    static auto *const all = new std::vector<OutputStream *>;
    const std::lock_guard<std::mutex> lock(*guard);
    all->push_back(stream);
}

} // namespace

OutputStream::OutputStream(int descriptor, int most)
    : m_descriptor(descriptor)
    , m_most(static_cast<std::size_t>(most))
{
    keep(this);
}

void OutputStream::tellGapsAs(std::function<std::string(int)> text)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_gapText = std::move(text);
}

void OutputStream::onFailure(std::function<void(const Failure &)> failed)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_failed = std::move(failed);
}

bool OutputStream::put(const std::string &bytes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return take(bytes);
}

bool OutputStream::putOrCount(const std::string &bytes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_error != 0)
        return true;
    if (m_untold == 0 && take(bytes))
        return true;
    ++m_untold;
    ++m_passedOver;
    return false;
}

/// With the lock held.
bool OutputStream::take(const std::string &bytes)
{
    if (m_error != 0 || bytes.empty())
        return true;
    if (!m_bytes.empty() && m_bytes.size() + bytes.size() > m_most)
        return false;
    begin();
    m_bytes += bytes;
    m_pieces.push_back(bytes.size());
    m_waitingBytes = static_cast<int>(m_bytes.size());
    m_changed.notify_all();
    return true;
}

bool OutputStream::drain(int rest, const std::function<bool()> &enough)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto isThere = [&] { return m_waitingBytes <= rest; };
    while (!m_changed.wait_for(lock, lookAgainAfter, isThere)) {
        lock.unlock();
        const bool isEnough = enough();
        lock.lock();
        if (isEnough)
            return isThere();
    }
    return true;
}

bool OutputStream::drain(int rest, std::chrono::nanoseconds patience)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, patience, [&] { return m_waitingBytes <= rest; });
}

/// Starts the thread with the first bytes; a signal must not be handled on it.
void OutputStream::begin()
{
    if (m_hasBegun)
        return;
    m_hasBegun = true;
    sigset_t all;
    sigset_t former;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &former);
    std::thread([this] { serve(); }).detach();
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

void OutputStream::serve()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return !m_bytes.empty(); });
        writeSome(lock);
        if (m_bytes.empty() && m_untold > 0)
            tellGap();
        m_waitingBytes = static_cast<int>(m_bytes.size());
        m_changed.notify_all();
    }
}

/// Writes a piece with the lock given up meanwhile.
void OutputStream::writeSome(std::unique_lock<std::mutex> &lock)
{
    const std::string piece = m_bytes.substr(0, pieceOf(m_bytes));
    lock.unlock();
    const ssize_t written = ::write(m_descriptor, piece.data(), piece.size());
    const int reason = written < 0 ? errno : 0;
    if (reason == EAGAIN) { // another program has set O_NONBLOCK on what both hold open
        pollfd room = { m_descriptor, POLLOUT, 0 };
        poll(&room, 1, -1);
    }
    lock.lock();
    if (written >= 0)
        noteWritten(static_cast<std::size_t>(written));
    else if (reason != EAGAIN && reason != EINTR)
        giveUp(lock, reason);
}

void OutputStream::noteWritten(std::size_t count)
{
    m_bytes.erase(0, count);
    m_writtenOfFirst += count;
    while (!m_pieces.empty() && m_writtenOfFirst >= m_pieces.front()) {
        m_writtenOfFirst -= m_pieces.front();
        m_wholeBytes += m_pieces.front();
        m_pieces.pop_front();
    }
}

/// Takes no more from now on. Whoever waits for the end of the stream learns it behind the one who
/// hears of failures, whose own words may have to come first.
void OutputStream::giveUp(std::unique_lock<std::mutex> &lock, int reason)
{
    m_error = reason;
    m_untold = 0;
    m_pieces.clear();
    if (m_failed) {
        const auto failed = m_failed;
        const Failure failure { reason, m_wholeBytes };
        lock.unlock();
        failed(failure);
        lock.lock();
    }
    m_bytes.clear();
}

void OutputStream::tellGap()
{
    const int count = m_untold.exchange(0);
    m_bytes = m_gapText ? m_gapText(count) : std::string();
    if (!m_bytes.empty())
        m_pieces.push_back(m_bytes.size());
}

} // namespace dx4::common
