// SPDX-License-Identifier: MIT
// Writes with an outcome: each gets an id and ends exactly once.
#pragma once

#include "host/exchange/cycle.h"
#include "host/frames/reply_check.h"
#include "host/writes/write_queue.h"

#include <deque>
#include <functional>

namespace dx4::host {

/// How a write ended.
enum class WriteEnd {
    Confirmed, ///< echoed by the station and read back where asked; or nothing was to be sent
    Rejected, ///< the station answered with an exception
    TimedOut, ///< no right reply came, the line broke, or a stop went first once it was sent
    Replaced, ///< a newer write of the same registers took its place, or a stop
    Refused, ///< never queued, or dropped before it was sent; see Refusal
    NotTaken, ///< echoed, but another value was read back
};

/// Why a write was refused.
enum class Refusal {
    None,
    Station, ///< stations are 1 to 247
    Access, ///< the type is unknown or can only be read
    Count, ///< "CW" and "FRE" take one register, "F" as many as a block has
    Range, ///< no such address
    NotConnected, ///< the line is closed, or the station is left alone
    NotAnswered, ///< a command to a station that has not answered yet
    QueueFull, ///< 512 wait already, 16 of them or more for this station
    Stopping, ///< a safe stop is under way
    NotConfigured, ///< the configuration does not name the station
};

struct WriteOutcome {
    int id = 0;
    WriteEnd end = WriteEnd::Confirmed;
    Refusal refusal = Refusal::None;
    int exceptionCode = 0; ///< with Rejected
    bool sent = false; ///< false: the station got nothing of it, as with values held already;
                       ///< true also where the line broke in the middle
    QString text; ///< one line for the user: which register, what happened
    WriteWish wish; ///< what was to be written
    QVector<quint16> before; ///< what the station held when that was compared, one per register;
                             ///< empty where it was not
};

/// Brings writes to the stations, each station's in the order of submission, and follows each to
/// its end.
///
/// The driver keeps what it was given: it takes anything, replaces a write in the middle of its
/// list, never takes one back, and never drops a command of more than one register. So it is handed
/// one request at a time, when it would send it at once; all others wait here. Parameters are read
/// first and written only when they differ, because the drive's memory wears out.
///
/// Handlers run in deliver() and afterStep() alone. What one throws leaves from there once all have
/// been called. A host without a Runtime has its step as a whole done before that:
///
///     link.handlerErrors().during([&] {
///         desk.deliver();
///         desk.prepare();
///         const Cycle::Step step = cycle.step();
///         if (step != Cycle::Step::Idle)
///             desk.afterStep(cycle, step, verdict);
///     });
class WriteDesk {
public:
    using OutcomeHandler = std::function<void(const WriteOutcome &)>;

    /// Gives a reason to refuse a wish that is right in itself, or Refusal::None.
    using Gate = std::function<Refusal(const WriteWish &)>;

    /// Whether a wish stops its station.
    using StopTest = std::function<bool(const WriteWish &)>;

    /// @param link  outlives the desk
    explicit WriteDesk(Link &link);

    /// Called once per write when it has ended. It may submit the next one.
    void onOutcome(OutcomeHandler handler) { m_handler = std::move(handler); }
    void setGate(Gate gate) { m_gate = std::move(gate); }

    /// A wish of which `isStop` is true takes the place of all writes of the same registers that
    /// were not sent, wherever they wait, even when it is refused itself. Others take the place of
    /// the station's last one, if that is of the same registers.
    void setStopTest(StopTest isStop) { m_isStop = std::move(isStop); }

    /// Takes a write. Nothing is reported before the next deliver(), a refusal neither.
    ///
    /// @return its id, 1000 or more, never used twice
    int submit(const WriteWish &wish);

    /// To be called before each step of the cycle: hands the driver what is due.
    void prepare();

    /// To be called after each step of the cycle that was not Idle. Reports what has ended.
    void afterStep(const Cycle &cycle, Cycle::Step step, const ReplyVerdict &verdict);

    /// Reports what has ended since the last call. What ends because of a handler, as a write that
    /// is refused, is for the next one.
    void deliver();

    /// Ends every waiting write; what the driver has of them is the caller's to give up. One that
    /// was sent ends as timed out, whatever `end` the others get.
    void abandon(WriteEnd end, Refusal refusal, const QString &reason);

    /// Writes whose outcome was not reported.
    int pending() const { return m_queue.size() + static_cast<int>(m_ended.size()); }

    /// Outcomes reported since the desk was made.
    int reported() const { return m_reported; }

    /// The value that a register is to have, as the newest write of it that has not ended says.
    std::optional<quint16> waitingValue(int station, const QString &regType, int address) const
    {
        return m_queue.waitingValue(station, regType, address);
    }

private:
    struct End {
        WriteEnd kind;
        QString text;
        Refusal refusal = Refusal::None;
        int exceptionCode = 0;
    };

    bool isFull(int station, int replaced) const;
    Refusal refusalOf(const WriteWish &wish) const;
    void keepLocal();
    void settle(QueuedWrite &write, const Cycle &cycle, Cycle::Step step,
                const ReplyVerdict &verdict);
    void served(QueuedWrite &write, const QByteArray &reply);
    void givenUp(const QueuedWrite &write, const ReplyVerdict &verdict, const QString &reason);
    void noteDropped();
    void finish(const QueuedWrite &write, const End &end);

    Link &m_link;
    OutcomeHandler m_handler;
    Gate m_gate;
    StopTest m_isStop;
    WriteQueue m_queue;
    std::deque<WriteOutcome> m_ended; // not reported yet
    int m_asked = 0; ///< id of the write of which the driver has a request; 0: none
    int m_nextId;
    int m_reported = 0;
};

/// "confirmed", "rejected", "timed out", "replaced", "refused", "not taken".
const char *writeEndName(WriteEnd end);

/// One sentence on the reason.
QString refusalText(Refusal refusal);

} // namespace dx4::host
