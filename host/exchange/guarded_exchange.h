// SPDX-License-Identifier: MIT
// An exchange that lets only the request's own reply through to the driver.
#pragma once

#include "host/exchange/adapter_echo.h"
#include "host/exchange/answer_times.h"
#include "host/exchange/exchange.h"
#include "host/exchange/owed_replies.h"
#include "host/frames/frame_finder.h"

#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace dx4::host {

/// How long one exchange may take, and what may be done for it.
struct Allowance {
    Duration timeout { 0 }; ///< end of the request to the first byte of its reply
    /// Moment at which it ends, whatever the line does; the request goes out all the same, but not
    /// behind reads of the guard's own that have taken its time.
    std::optional<Duration> until;
    bool isUrgent = false; ///< goes out at once: nothing else is asked before or behind it
};

/// Finds the reply in what the line brings: strips the adapter's echo, skips junk and other
/// stations' frames, recognises an exception at its fifth byte. What is not the request's own reply
/// reaches the driver as no bytes at all.
///
/// A reply is believed only if it can be the answer to nothing but the request in hand. A read
/// reply names no register, so one that comes late would pass for the next read of the same station
/// and length. A station that did not answer therefore owes a reply until it was seen, or until the
/// station answered something that it was asked later and that cannot be mistaken. While it owes
/// one it is asked only what that reply cannot pass for, or the same once more; for anything else
/// it is first asked for a number of registers that it does not owe. A request that must not go out
/// yet ends as Withheld. Other stations are asked meanwhile.
///
/// The reply of a single-register write equals its request. One copy confirms such a write only
/// while the adapter is known not to echo; else it takes one more than there can be echoes. Where
/// it is not known, short reads of the same station find out before the write goes out.
class GuardedExchange : public Exchange {
public:
    /// @param line  outlives the exchange
    explicit GuardedExchange(Line &line);

    /// Sends the request and waits for its reply for the station's response timeout.
    Reply run(const FRAME_PRO &request) override;

    /// As run(), with limits of its own.
    Reply runWithin(const FRAME_PRO &request, const Allowance &allowance);

    /// Reads the status word once, by itself and not for the driver.
    Reply probe(int station, const Allowance &allowance);

    /// Writes the control word of all stations at once. Nobody answers a broadcast, so nothing is
    /// confirmed by it; it ends after the turnaround that stations need to carry it out.
    Reply broadcast(quint16 controlWord, const Allowance &allowance);

    /// Takes in what has come since the last exchange, without waiting; the report has it.
    void listen();

    const ExchangeReport &report() const override { return m_report; }

    /// Silence that a station needs before a request, on top of the line's own gap.
    void setExtraGap(int station, Duration extra) { m_extraGaps[station] = extra; }

    /// `isHurried` is asked before each request that is not urgent, and while it waits to be sent
    /// once in every silent gap of the line. When it says so the request is withheld, which ends
    /// the wait for replies that are owed, the reads ahead of it and the gap before it. The reply
    /// of what was sent is awaited to its end.
    void setHurry(std::function<bool()> isHurried) { m_isHurried = std::move(isHurried); }

    /// Response timeout of a station: that of the line, or a longer one that was learnt.
    Duration timeoutOf(int station) const { return m_answerTimes.timeoutOf(station); }

    /// Silence that is kept before a request to a station.
    Duration gapBefore(int station) const;

    /// The slowest of its last answers, wire times taken off; none before the first of which it is
    /// known which request it answers.
    std::optional<Duration> answerTime(int station) const
    {
        return m_answerTimes.slowestOf(station);
    }

    /// What was learnt of a station's timeout, in words and once; empty when nothing was.
    QString takeNotice() { return m_answerTimes.takeNotice(); }

    /// Forgets the adapter: the line is another one since it was opened again. What stations owe
    /// they may still bring. An exchange that finds the line closed does so by itself.
    void forgetLine();

private:
    /// How a station is brought to tell that it owes nothing.
    struct Clearing {
        Duration askAgainAt { 0 };
        Duration pause { 0 };
        int refusals = 0; ///< heard after such a read, which may have been meant
        bool isLate = false; ///< what it was asked before came late
    };

    void beginReport();
    Reply lineDown(Duration start);
    Reply exchange(const FRAME_PRO &request, const Allowance &allowance);
    Reply finish(const FRAME_PRO &request, Duration start);
    void learnEcho(const FRAME_PRO &request, const Allowance &allowance);
    bool clear(const FRAME_PRO &request, const Allowance &allowance);
    bool isTooLate(const FRAME_PRO &request, const Allowance &allowance) const;
    bool isUnclear(const FRAME_PRO &request) const;
    bool askToClear(const FRAME_PRO &read, const Allowance &allowance);
    void awaitClear(const FRAME_PRO &request, Duration until);
    std::optional<FRAME_PRO> clearingRead(const FRAME_PRO &request, bool isThere) const;
    Duration longestAnswer() const;
    bool isHurried() const { return m_isHurried && m_isHurried(); }
    Duration nextLook(Duration moment) const;
    bool awaitFirstSilence(Duration gap, Duration limit, bool isUrgent);
    bool awaitGap(const FRAME_PRO &request, const Allowance &allowance);
    bool send(const FRAME_PRO &request);
    void hear(const QByteArray &bytes);
    void collect(const FRAME_PRO &request, Duration deadline, const Allowance &allowance);
    bool seemsDamaged(const FRAME_PRO &request) const;
    bool takeFrame(const FRAME_PRO *request, const FrameFinder::Found &found);
    void noteEcho(const QByteArray &copy);
    void noteReply(const FRAME_PRO &request, const OwedReplies::Claim &claim);
    void noteAnswerTime(int station, const OwedReplies::Claim &claim, int length);
    void noteSkipped(const QByteArray &bytes);

    Line &m_line;
    ExchangeReport m_report;
    OwedReplies m_owed;
    FrameFinder m_finder;
    QByteArray m_reply; // what the verdict of the report is about
    AdapterEcho m_echo;
    AnswerTimes m_answerTimes;
    std::map<int, Clearing> m_clearing;
    bool m_heardRefusal = false; // late, so that it is not known of what
    std::map<int, Duration> m_extraGaps;
    std::function<bool()> m_isHurried;
    std::optional<Duration> m_lastActivity; // of the line, as far as it was followed
    int m_lateBefore = 0; // late replies since the last exchange
};

} // namespace dx4::host
