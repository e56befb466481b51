// SPDX-License-Identifier: MIT
// A standard stream behind a thread of its own, so that its reader never holds up the line.
#include "cli/output_stream.h"

#include "host/length.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <thread>

#include <poll.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

constexpr int mostAtOnce = 4096; // bytes; a pipe takes so many whole, or none
constexpr host::Duration lookAgainAfter = std::chrono::milliseconds(50);

/// As many bytes as go out at once, up to the end of a line where there is one.
int pieceOf(const QByteArray &bytes)
{
    if (bytes.size() <= mostAtOnce)
        return host::lengthOf(bytes);
    const auto lineEnd = bytes.lastIndexOf('\n', mostAtOnce - 1);
    return lineEnd < 0 ? mostAtOnce : static_cast<int>(lineEnd) + 1;
}

} // namespace

OutputStream::OutputStream(int descriptor)
    : m_descriptor(descriptor)
{
}

bool OutputStream::put(const QByteArray &bytes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_error != 0)
        return true;
    if (m_bytes.size() + bytes.size() > mostWaiting)
        return false;
    begin();
    m_bytes += bytes;
    m_waitingBytes = host::lengthOf(m_bytes);
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

bool OutputStream::drain(int rest, host::Duration patience)
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
        m_changed.wait(lock, [this] { return !m_bytes.isEmpty(); });
        writeSome(lock);
        m_waitingBytes = host::lengthOf(m_bytes);
        m_changed.notify_all();
    }
}

/// Writes a piece with the lock given up meanwhile.
void OutputStream::writeSome(std::unique_lock<std::mutex> &lock)
{
    const QByteArray piece = m_bytes.left(pieceOf(m_bytes));
    lock.unlock();
    const ssize_t written =
        ::write(m_descriptor, piece.constData(), static_cast<std::size_t>(piece.size()));
    const int reason = written < 0 ? errno : 0;
    if (reason == EAGAIN) { // another program has set O_NONBLOCK on what both hold open
        pollfd room = { m_descriptor, POLLOUT, 0 };
        poll(&room, 1, -1);
    }
    lock.lock();
    if (written >= 0) {
        m_bytes.remove(0, static_cast<int>(written));
    } else if (reason != EAGAIN && reason != EINTR) {
        m_error = reason;
        m_bytes.clear();
    }
}

} // namespace dx4::cli
