// SPDX-License-Identifier: MIT
// One request and what came back: the step between the cycle and the line.
#pragma once

#include "host/frames/reply_check.h"
#include "host/line/line.h"
#include "host_records.h"

#include <QVector>

namespace dx4::host {

/// What a request brought.
struct Reply {
    enum class Kind {
        Complete, ///< as many bytes as the request expects
        Incomplete, ///< some bytes, then nothing until the deadline
        Silence, ///< nothing until the deadline
        LineDown, ///< the line is closed or broke; the request may not have left
        NotAsked, ///< the station or this request is not to be asked; the line was not used
        Withheld, ///< not sent: a reply that the station still owes could pass for its own
    };

    Kind kind = Kind::Silence;
    QByteArray bytes; ///< for the driver
    bool canRetry = true; ///< false: asking again cannot bring another answer
    Duration turnaround { 0 }; ///< from the call that sent the request to the end of the wait
    bool isRepeated = false; ///< where it failed: the host makes the request anew, it is not over
};

/// What one exchange met, for counters and messages.
struct ExchangeReport {
    ReplyVerdict verdict; ///< of the bytes that were taken for the reply
    int bytesHeard = 0; ///< while the reply was awaited
    int junkBytes = 0; ///< skipped before the reply; no frame
    int foreignFrames = 0; ///< whole frames that answered another request
    int foreignStation = 0; ///< station of the last of them; 0 when there was none
    int lateReplies = 0; ///< replies to earlier requests, or maybe to them; none was believed
    bool echoStripped = false; ///< the adapter gave the request back before the reply
    int echoProbes = 0; ///< reads of the guard's own, to learn whether the adapter echoes
    int clearingReads = 0; ///< reads of the guard's own, to learn what the station still owes
    QVector<int> heardStations; ///< of each late reply, and of each frame nobody was asked for
    Duration answerDelay { 0 }; ///< turnaround less the wire time of request and reply
};

/// Carries one request to the station and its reply back. Checks that go beyond the driver's own
/// and stations that are not to be asked are further implementations around this one.
class Exchange {
public:
    Exchange() = default;
    virtual ~Exchange() = default;
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    /// Sends the request and waits for its reply.
    virtual Reply run(const FRAME_PRO &request) = 0;

    /// Of the last run that used the line.
    virtual const ExchangeReport &report() const = 0;
};

/// The plain exchange: silent gap, stale input dropped, send, collect `replyLength` bytes.
class LineExchange : public Exchange {
public:
    /// @param line  outlives the exchange
    explicit LineExchange(Line &line);

    Reply run(const FRAME_PRO &request) override;
    const ExchangeReport &report() const override { return m_report; }

private:
    Line &m_line;
    ExchangeReport m_report;
};

} // namespace dx4::host
