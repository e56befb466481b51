// SPDX-License-Identifier: MIT
// What the stations of a line, and its adapter, may still bring.
#pragma once

#include "host/line/line_settings.h"
#include "host_records.h"

#include <QByteArray>
#include <QVector>

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace dx4::host {

/// Keeps for each request that went out what it may still bring: a reply of its station, and an
/// echo of the adapter.
///
/// Two things are taken for granted. A station answers its requests in the order in which it got
/// them, each once or not at all. An adapter hands over what it hears in that order too,
/// so that an echo comes before the reply. From these follows what is known: whatever a frame can
/// be the answer to, the earliest of these is settled, and so is all that its station was asked
/// before. Time settles nothing, but for a station that is asked nothing which could settle it; see
/// expire().
class OwedReplies {
public:
    /// What a frame whose CRC is right can be.
    enum class Kind {
        Unowed, ///< nothing that was asked for
        Echo, ///< a request that comes back
        Late, ///< a reply to an earlier request, or maybe to one
        Own, ///< a reply to nothing but the request in hand
    };

    struct Claim {
        Kind kind = Kind::Unowed;
        bool isSingle = false; ///< exactly one request can have brought it
        bool isOfCurrent = false; ///< with Echo: the request in hand comes back
        std::optional<Duration> asked; ///< when the earliest request that it fits had gone out
    };

    /// Notes a request that goes out. It becomes the one in hand.
    ///
    /// @param mayEcho  the adapter may give it back
    /// @param end      moment of its last byte
    void noteSent(const FRAME_PRO &request, bool mayEcho, Duration end);

    /// From here on no request is in hand: what comes is late.
    void noteGivenUp() { m_current = 0; }

    /// Tells what a frame is that has come now, and settles what it settles.
    Claim take(const QByteArray &frame, Duration now);

    /// The adapter has just shown that it echoes: single writes that wait for their replies may
    /// come back first.
    void expectEchoes();

    /// Whether something owed could be taken for the reply to a request that is not sent yet. A
    /// refusal is not thought of: it names no more than station and function, and take() believes
    /// none that may be another's.
    bool couldMislead(const FRAME_PRO &request) const;

    /// Whether a station owes so much that it has to tell what is left of that before it is asked
    /// anything else.
    bool owesTooMuch(int station) const;

    /// Whether the reply to a read would be told from all that its station owes.
    bool isUnmistakable(const FRAME_PRO &read) const;

    /// Whether it is what the station was asked last: once more, it may be answered a second time,
    /// but by nothing else than it would have been.
    bool wasLast(const FRAME_PRO &read) const;

    /// Lengths that a frame beginning with these two bytes may have, ascending. Empty: none is
    /// expected.
    QVector<int> lengths(int station, int function) const;

    /// Lets go of what its station would have answered by now if it took `longest` for each request
    /// that it got.
    void expire(int station, Duration now, Duration longest);

private:
    /// Equal requests that went to a station one right after the other.
    struct Entry {
        QByteArray request;
        int replyLength = 0;
        int dataLength = 0;
        int tag = 0;
        bool isWrite = false;
        std::int64_t count = 1; ///< replies that may come
        std::int64_t echoes = 0; ///< echoes that may come, of the last ones
        std::uint64_t firstOrder = 0;
        std::uint64_t lastOrder = 0;
        std::vector<Duration> ends; ///< of the oldest ones; as many as `count`, or fewer
        Duration lastEnd { 0 };
    };
    using Entries = std::vector<Entry>;
    using Stations = std::map<int, Entries>;

    static bool answers(const Entry &entry, const QByteArray &frame);
    static bool isSameRequest(const Entry &entry, const QByteArray &request, int tag);
    bool isCurrent(const Entry &entry) const { return entry.lastOrder == m_current; }
    bool meansTheSame(const Entries &entries, std::size_t position) const;
    std::optional<Claim> takeEcho(const QByteArray &frame);
    void settle(Stations::iterator station, std::size_t position, Duration now);
    void settleEchoes(std::uint64_t before);

    Stations m_stations; // that were asked; what was settled is gone from their entries
    std::map<int, Duration> m_busyUntil; // a station with what is settled, at the latest
    std::uint64_t m_order = 0; // of the last request
    std::uint64_t m_current = 0; // order of the request in hand; 0: none
};

} // namespace dx4::host
