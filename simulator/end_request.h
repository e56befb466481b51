// SPDX-License-Identifier: MIT
// What ends dx4-sim from outside its loop: signals, and a stream that it cannot do without.
#pragma once

#include <csignal>

namespace dx4::sim {

/// SIGINT, SIGTERM and SIGHUP, and ask(), which other threads may call. One object at a time.
///
/// The signals are blocked but for waitMask(), so that none is missed between a look at asked() and
/// the wait. SIGTSTP is noted likewise, for suspend(). A SIGHUP or SIGTSTP that the caller has had
/// ignored stays ignored.
class EndRequest {
public:
    EndRequest();
    ~EndRequest();
    EndRequest(const EndRequest &) = delete;
    EndRequest &operator=(const EndRequest &) = delete;

    /// Asks for the end from any thread.
    void ask();

    /// Whether the end was asked for.
    bool asked() const;

    /// Becomes readable with ask().
    int descriptor() const { return m_descriptor; }

    /// Signals that stay blocked while the program waits; the others interrupt it.
    const sigset_t &waitMask() const { return m_former; }

    /// Whether SIGTSTP has come and was not obeyed yet.
    bool suspendAsked() const;

    /// Stops the process as SIGTSTP does, and returns when it goes on.
    void suspend();

private:
    int m_descriptor = -1;
    sigset_t m_former {};
};

} // namespace dx4::sim
