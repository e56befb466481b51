// SPDX-License-Identifier: MIT
// An exchange that lets only the request's own reply through to the driver.
#pragma once

#include "host/adapter_echo.h"
#include "host/exchange.h"

#include <map>
#include <vector>

namespace dx4::host {

/// Finds the reply in what the line brings: strips the adapter's echo, skips junk and other
/// stations' frames, recognises an exception at its fifth byte. What is not the request's own reply
/// reaches the driver as no bytes at all.
///
/// A read reply names no register, so one that comes late would pass for the next read of the same
/// station and length. After a timeout such a request waits until the missing reply has come, or
/// until another response timeout has passed in silence; other requests need not wait, as their
/// replies differ. A station must not be slower than twice the response timeout.
///
/// The reply of a single-register write equals its request. One copy confirms such a write only
/// while the adapter is known not to echo; else it takes two. Where it is not known, short reads of
/// the same station find out before the write goes out, or behind it where the write is a safe
/// stop.
class GuardedExchange : public Exchange {
public:
    /// @param line  outlives the exchange
    explicit GuardedExchange(Line &line);

    /// Sends the request and waits for its reply for the line's response timeout.
    Reply run(const FRAME_PRO &request) override;

    /// As run(), with another response timeout.
    Reply runWithin(const FRAME_PRO &request, Duration timeout);

    const ExchangeReport &report() const override { return m_report; }

    /// Silence that a station needs before a request, on top of the line's own gap.
    void setExtraGap(int station, Duration extra) { m_extraGaps[station] = extra; }

    /// Forgets the adapter and what it may still bring: the line is another one since it was
    /// opened again. An exchange that finds the line closed does so by itself.
    void forgetLine();

private:
    /// A request whose replies may still come.
    struct Unanswered {
        FRAME_PRO request;
        int replies = 1;
        Duration until { 0 }; ///< moment after which none is expected
    };

    Reply exchange(const FRAME_PRO &request, Duration timeout);
    int learnEcho(int station, Duration timeout);
    void awaitLateReplies(const FRAME_PRO &request);
    void awaitGap(const FRAME_PRO &request);
    void collect(const FRAME_PRO &request, Duration deadline);
    bool findReply(const FRAME_PRO &request);
    bool stripEcho(const FRAME_PRO &request);
    void noteEchoOf(const FRAME_PRO &request, int skipped);
    void noteSkipped(const QByteArray &bytes);
    void noteUnanswered(const FRAME_PRO &request, Duration until);
    void prolongUnanswered(const FRAME_PRO &request, Duration until);
    bool isDamagedReply(ReplyCause cause, const FRAME_PRO &request) const;
    Reply finish(const FRAME_PRO &request, Duration start);

    Line &m_line;
    ExchangeReport m_report;
    QByteArray m_heard; ///< of this exchange, without what was skipped; then the reply alone
    AdapterEcho m_echo;
    std::vector<Unanswered> m_unanswered;
    std::map<int, Duration> m_extraGaps;
};

} // namespace dx4::host
