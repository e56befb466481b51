// SPDX-License-Identifier: MIT
// The loop that a host runs: ask for a frame, send it, collect the reply, hand it back.
#pragma once

#include "host/exchange.h"
#include "host/link.h"

namespace dx4::host {

/// What happened since the cycle was made.
struct Counters {
    quint64 requests = 0; ///< frames sent, repeated ones included
    quint64 readsServed = 0; ///< reads answered
    quint64 writesServed = 0; ///< writes confirmed by their echo
    quint64 retries = 0; ///< bad replies after which the same frame is sent again
    quint64 givenUp = 0; ///< requests that used up their tries
    quint64 silences = 0; ///< tries without a single byte
    quint64 badReplies = 0; ///< tries whose bytes the driver refused
    quint64 lineDowns = 0; ///< tries ended by the line itself; they do not count against a request
    quint64 bytesSent = 0;
    quint64 bytesReceived = 0;
};

/// Drives one link over one exchange.
class Cycle {
public:
    /// Result of one step.
    enum class Step {
        Idle, ///< the driver has nothing to send
        Served, ///< the reply was accepted
        Retry, ///< the reply was bad; the next step sends the same frame again
        GivenUp, ///< the reply was bad for the last time; the request is dropped
        LineDown, ///< the line is closed; the driver was told nothing and keeps its request
    };

    /// @param link, exchange  outlive the cycle
    Cycle(Link &link, Exchange &exchange);

    /// One exchange, from asking for a frame to handing back its reply.
    Step step();

    const Counters &counters() const { return m_counters; }

    /// The request, its reply and the driver's line about it, of the last step that was not Idle.
    const FRAME_PRO &request() const { return m_request; }
    const Reply &reply() const { return m_reply; }
    const QString &errorText() const { return m_errorText; }

private:
    Step settle(ReplyResult result);

    Link &m_link;
    Exchange &m_exchange;
    Counters m_counters;
    FRAME_PRO m_request;
    Reply m_reply;
    QString m_errorText;
};

} // namespace dx4::host
