// SPDX-License-Identifier: MIT
// A stream behind a thread of its own, so that its reader never holds up the line.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace dx4::common {

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
    /// What is left behind by a write that failed.
    struct Failure {
        int error = 0; ///< errno
        std::uint64_t wholeBytes = 0; ///< of those pieces that were written to their ends
    };

    /// Bytes that wait at most, where no other bound is given.
    static constexpr int mostWaiting = 1 << 20;

    /// @param most  bytes that wait at most; only a piece alone may be larger
    explicit OutputStream(int descriptor, int most = mostWaiting);
    ~OutputStream() = delete;
    OutputStream(const OutputStream &) = delete;
    OutputStream &operator=(const OutputStream &) = delete;

    /// What putOrCount() says in the place of pieces that it passed over: `text` gets their number.
    /// Called on the stream's thread, as is `failed`, which hears of the first write that fails.
    void tellGapsAs(std::function<std::string(int)> text);
    void onFailure(std::function<void(const Failure &)> failed);

    /// Has a piece written behind those that wait; never waits itself.
    ///
    /// @return false when there is no room for it; after a failed write all are taken, and dropped
    bool put(const std::string &bytes);

    /// The same; a piece without room is passed over, with all that come until everything that
    /// waits was taken. Then their number is told.
    bool putOrCount(const std::string &bytes);

    /// Bytes that were put and are not written.
    int waiting() const { return m_waitingBytes; }

    /// Pieces that were passed over and not told of.
    int untold() const { return m_untold; }

    /// Pieces that were passed over so far.
    int passedOver() const { return m_passedOver; }

    /// errno of the write that failed, 0 while none has.
    int error() const { return m_error; }

    /// Waits until no more than `rest` bytes wait, and gives up when `enough` says so, which is
    /// asked some twenty times a second.
    ///
    /// @return whether it came to that
    bool drain(int rest, const std::function<bool()> &enough);

    /// The same, no longer than `patience`.
    bool drain(int rest, std::chrono::nanoseconds patience);

private:
    bool take(const std::string &bytes);
    void begin();
    void serve();
    void writeSome(std::unique_lock<std::mutex> &lock);
    void noteWritten(std::size_t count);
    void giveUp(std::unique_lock<std::mutex> &lock, int reason);
    void tellGap();

    const int m_descriptor;
    const std::size_t m_most;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_bytes;
    std::deque<std::size_t> m_pieces; ///< lengths of those that wait, the first one's whole length
    std::size_t m_writtenOfFirst = 0;
    std::uint64_t m_wholeBytes = 0;
    std::function<std::string(int)> m_gapText;
    std::function<void(const Failure &)> m_failed;
    std::atomic<int> m_waitingBytes { 0 };
    std::atomic<int> m_untold { 0 };
    std::atomic<int> m_passedOver { 0 };
    std::atomic<int> m_error { 0 };
    bool m_hasBegun = false;
};

} // namespace dx4::common
