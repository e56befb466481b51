// SPDX-License-Identifier: MIT
// The loop that a host runs: ask for a frame, send it, collect the reply, hand it back.
#pragma once

#include "host/exchange/counters.h"
#include "host/link/link.h"

namespace dx4::host {

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

    /// One exchange, from asking for a frame to handing back its reply. What the link's handler
    /// throws leaves from here once the exchange is counted; request() and reply() tell of it then.
    Step step();

    /// What happened since the cycle was made.
    const CounterSet &counters() const { return m_counters; }

    /// Counts a line that was found closed between two steps.
    void noteLineDown() { m_counters.countLineDown(); }

    /// Counts a read of the status word that did not come from the driver.
    void noteProbe(int station, const ExchangeReport &report, Duration held)
    {
        m_counters.countProbe(station, report, held);
    }

    /// The request, its reply and the driver's line about it, of the last step that was not Idle.
    const FRAME_PRO &request() const { return m_request; }
    const Reply &reply() const { return m_reply; }
    const QString &errorText() const { return m_errorText; }

private:
    Step exchange();
    static Step stepOf(ReplyResult result);
    void count(Step step);
    void countSent(Step step, ExchangeReport report);

    Link &m_link;
    Exchange &m_exchange;
    CounterSet m_counters;
    FRAME_PRO m_request;
    Reply m_reply;
    QString m_errorText;
};

} // namespace dx4::host
