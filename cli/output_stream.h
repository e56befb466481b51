// SPDX-License-Identifier: MIT
// A standard stream behind a thread of its own, so that its reader never holds up the line.
#pragma once

#include "host/line_settings.h"

#include <QByteArray>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace dx4::cli {

/// What one stream has still to write, and the thread that writes it.
///
/// A pipe that nobody empties and a terminal under Ctrl-S hold whoever writes to them, and a motor
/// may have to be stopped meanwhile. Descriptors that do not block would be the other way, but
/// O_NONBLOCK belongs to the open file: on a terminal it would reach the shell and everything else
/// there. So a thread writes and may be held; it takes no signals, which thus reach the line's.
///
/// Objects live until the program ends: their thread may be held in a write for ever.
class OutputStream {
public:
    /// Bytes that wait at most. What does not fit is refused as a whole.
    static constexpr int mostWaiting = 1 << 20;

    explicit OutputStream(int descriptor);
    ~OutputStream() = delete;
    OutputStream(const OutputStream &) = delete;
    OutputStream &operator=(const OutputStream &) = delete;

    /// Has bytes written behind those that wait; never waits itself.
    ///
    /// @return false when there is no room for them; after a failed write all are taken, and
    /// dropped
    bool put(const QByteArray &bytes);

    /// Bytes that were put and are not written.
    int waiting() const { return m_waitingBytes; }

    /// errno of the write that failed, 0 while none has.
    int error() const { return m_error; }

    /// Waits until no more than `rest` bytes wait, and gives up when `enough` says so, which is
    /// asked some twenty times a second.
    ///
    /// @return whether it came to that
    bool drain(int rest, const std::function<bool()> &enough);

    /// The same, no longer than `patience`.
    bool drain(int rest, host::Duration patience);

private:
    void begin();
    void serve();
    void writeSome(std::unique_lock<std::mutex> &lock);

    const int m_descriptor;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    QByteArray m_bytes;
    std::atomic<int> m_waitingBytes { 0 };
    std::atomic<int> m_error { 0 };
    bool m_hasBegun = false;
};

} // namespace dx4::cli
