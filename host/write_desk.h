// SPDX-License-Identifier: MIT
// Writes with an outcome: each gets an id and ends exactly once.
#pragma once

#include "host/cycle.h"
#include "host/reply_check.h"

#include <QVector>

#include <functional>
#include <map>

namespace dx4::host {

/// What is to be written.
struct WriteWish {
    int station = 1;
    QString regType; ///< "F", "CW" or "FRE"
    int address = 0; ///< internal address of the first register
    QVector<quint16> values; ///< one per register
    bool always = false; ///< "F": write also what the station holds already
    bool readBack = false; ///< "F": read after the echo and compare; others cannot be read
};

/// How a write ended.
enum class WriteEnd {
    Confirmed, ///< echoed by the station and read back where asked; or nothing was to be sent
    Rejected, ///< the station answered with an exception
    TimedOut, ///< no right reply came, the line went down, or a stop went first once it was sent
    Replaced, ///< a newer write of the same registers took its place
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
    QueueFull, ///< the driver would overwrite another write
    Stopping, ///< a safe stop is under way
};

struct WriteOutcome {
    int id = 0;
    WriteEnd end = WriteEnd::Confirmed;
    Refusal refusal = Refusal::None;
    int exceptionCode = 0; ///< with Rejected
    bool sent = false; ///< false: the station got nothing of it, as with values held already;
                       ///< true also where the line broke in the middle
    QString text; ///< one line for the user: which register, what happened
};

/// Queues writes in the driver and follows each to its end.
///
/// The driver shows a written value at once, takes anything, and never drops a command of more than
/// one register: such writes are refused here. Parameters are read first and written only when they
/// differ, because the drive's memory wears out; the value then shows once its write is queued.
/// A one-off read that fails drops all that wait in the driver; those of this desk are asked again.
class WriteDesk {
public:
    using OutcomeHandler = std::function<void(const WriteOutcome &)>;

    /// Gives a reason to refuse a wish that is right in itself, or Refusal::None.
    using Gate = std::function<Refusal(const WriteWish &)>;

    /// @param link  outlives the desk
    explicit WriteDesk(Link &link);

    /// Called once per write when it ends. It may submit the next one.
    void onOutcome(OutcomeHandler handler) { m_handler = std::move(handler); }
    void setGate(Gate gate) { m_gate = std::move(gate); }

    /// Takes a write. When it is refused its outcome is reported before the call returns.
    ///
    /// @return its id, 1000 or more, never used twice
    int submit(const WriteWish &wish);

    /// To be called after each step of the cycle that was not Idle.
    void afterStep(const Cycle &cycle, Cycle::Step step, const ReplyVerdict &verdict);

    /// Ends every waiting write; what they have in the driver is the caller's to give up. One that
    /// was sent ends as timed out, whatever `end` the others get.
    void abandon(WriteEnd end, Refusal refusal, const QString &reason);

    /// Writes that have not ended.
    int pending() const { return static_cast<int>(m_entries.size()); }

private:
    enum class Stage { Comparing, Queued, ReadingBack };
    struct Entry {
        WriteWish wish;
        Stage stage;
        bool sent = false; ///< at least once
    };
    struct End {
        WriteEnd kind;
        QString text;
        Refusal refusal = Refusal::None;
        int exceptionCode = 0;
    };
    using Position = std::map<int, Entry>::iterator;

    Refusal refusalOf(const WriteWish &wish) const;
    bool overlapsQueued(int id, const WriteWish &wish) const;
    void replaceComparing(const WriteWish &wish);
    void keepLocal(Position entry);
    void queue(Position entry);
    void readAgain(Position entry, Stage stage);
    void served(Position entry, const Cycle &cycle);
    void givenUp(Position entry, const ReplyVerdict &verdict, const QString &reason);
    void finish(Position entry, const End &end);
    void finishReplaced(const QVector<int> &ids);
    void sweep();

    Link &m_link;
    OutcomeHandler m_handler;
    Gate m_gate;
    std::map<int, Entry> m_entries; // by id
    int m_nextId;
};

/// "confirmed", "rejected", "timed out", "replaced", "refused", "not taken".
const char *writeEndName(WriteEnd end);

/// One sentence on the reason.
QString refusalText(Refusal refusal);

} // namespace dx4::host
