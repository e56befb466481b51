// SPDX-License-Identifier: MIT
// The stop that is sent when nobody watches any more, and followed until it is confirmed.
#pragma once

#include "host/exchange/cycle.h"
#include "host/exchange/guarded_exchange.h"

#include <QVector>

#include <functional>
#include <map>
#include <optional>
#include <set>

namespace dx4::host {

/// What stops one station.
struct StopCommand {
    int station = 1;
    quint16 controlWord = 0; ///< value of "CW"
};

/// Bytes of the request, and of its echo.
inline constexpr int stopFrameBytes = 8;

/// Tag of the driver's requests that carry a safe stop: VARIABLE::varKind. Other users of the link
/// keep away from it.
inline constexpr int safeStopTag = 900;

/// What is known of a station whose stop is to be sent.
struct StopOutlook {
    bool isLeftAlone = false;
    std::optional<Duration> lastAnswer; ///< moment; none when it was never heard
    Duration living { 0 }; ///< what a living station takes to answer at most
    Duration timeout { 0 }; ///< response timeout in force
    Duration repeat { 0 }; ///< how long a repeat after the budget may wait for its echo
    Duration request { 0 }; ///< gap and wire time of a request to it
};

/// Brings every station to its stop: decides which one is next and how long its echo is awaited.
///
/// Within the budget only stops are sent. First comes one quick pass over all stations, one try
/// each, which keeps one request in reserve for every station still to come: whatever the dead do,
/// the living have their stop. Then come rounds over those that did not confirm. After the budget
/// a pending stop waits like a probe of the breaker, so that a dead station costs the others no
/// more than it does without one.
class SafeStop {
public:
    using Look = std::function<StopOutlook(int station)>;

    /// @param link  outlives the stop
    /// @param look  tells what is known of a station; outlives the stop
    SafeStop(Link &link, const QVector<StopCommand> &commands, Look look);

    /// Replaces the list. A station whose stop is not confirmed yet keeps its command.
    void setCommands(QVector<StopCommand> commands);
    const QVector<StopCommand> &commands() const { return m_commands; }

    /// Whether a broadcast goes before the stops; only where all of them have the same value.
    void setBroadcast(bool isWanted) { m_isBroadcast = isWanted; }

    /// Starts to stop every station of the list.
    ///
    /// @param budget  time for pass and rounds; with none each station is asked once and no echo
    ///                is awaited
    void begin(Duration now, Duration budget);

    /// The line is back: the unconfirmed are gone through once more, within this time.
    void resume(Duration now, Duration budget);

    /// Gives up what is not confirmed. One stop may have reached the driver and still go out.
    void cancel();

    /// A station has, or may have, carried out a "CW": it is known to turn while that is not its
    /// stop.
    void noteCommand(int station, quint16 controlWord) { m_lastCommand[station] = controlWord; }

    /// The station showed life: its stop is due at once, unless it rejected the last one.
    void noteSignOfLife(int station);

    /// Whether only stops are to be sent: the pass is under way, or the budget not used up.
    bool isUrgent(Duration now) const { return isPending() && (isPassing() || now < m_end); }
    bool isPassing() const { return m_roundsDone == 0 && !m_round.isEmpty(); }

    /// The value to broadcast before the pass; given once for each begin().
    std::optional<quint16> takeBroadcast();
    Allowance broadcastAllowance(Duration now) const;

    /// While it is urgent: puts the next stop before everything that waits in the driver, which is
    /// given up.
    ///
    /// @return whether a stop is due
    bool prepareNext(Duration now);

    /// Afterwards: the next station that is not left alone and whose stop is due.
    std::optional<int> due(Duration now) const;

    /// Puts the stop of a pending station behind what waits in the driver; one at a time.
    void repeat(int station);

    /// How the stop that the driver hands out now is to be asked: as prepareNext() found, or as a
    /// repeat.
    Allowance takeAllowance(int station);

    /// To be called after each step of the cycle that sent a request. The echo of a stop that
    /// somebody else wrote confirms it as well.
    void afterStep(const Cycle &cycle, Cycle::Step step, const ExchangeReport &report,
                   Duration now);

    /// The stop could not be sent yet; it is due again in a moment.
    void noteWithheld(int station, Duration now);

    /// When a try is due next that does not wait for a probe of the breaker.
    std::optional<Duration> nextTry(Duration now) const;

    /// Whether the stop that was sent last had to go out without the adapter being known.
    bool wasUrgent() const { return m_wasUrgent; }

    /// Whether there is a station to stop.
    bool isConfigured() const { return !m_commands.isEmpty(); }

    bool isPending() const { return !m_pending.empty(); }
    bool isPending(int station) const { return m_pending.count(station) > 0; }

    /// Stations that the last begin() wanted stopped and that did not confirm, ascending.
    QVector<int> unconfirmed() const;

    /// Whether a write of "CW" is a station's configured stop.
    bool isStop(int station, const QVector<quint16> &values) const;

private:
    struct Try {
        int rank = 0; ///< place in the pass
        bool showedLife = false; ///< since its last try
        bool isUnproven = false; ///< one copy of the last try came, whosever it was
        bool wasRejected = false; ///< answered, but not by its echo
        Duration notBefore { 0 };
        Duration delay { 0 };
    };

    void noteFailure(int station, const ExchangeReport &report, Duration now);
    void startPass();
    int classOf(int station, const StopOutlook &outlook) const;
    void startRound();
    void endRound(Duration now);
    Allowance allowanceInPass(int station, Duration now) const;
    Allowance allowanceInRound(int station, Duration now) const;
    Duration requestTimes() const;
    void queue(int station);
    void putAhead(int station);
    bool isNext() const;
    bool isQueued() const;
    std::optional<quint16> wordOf(int station) const;

    Link &m_link;
    QVector<StopCommand> m_commands;
    Look m_look;
    std::map<int, Try> m_pending; // by station
    std::set<int> m_unconfirmed;
    std::map<int, quint16> m_lastCommand; // by station
    QVector<int> m_round; // stations still to be asked in it; the first round is the pass
    int m_roundsDone = 0;
    Duration m_roundDelay { 0 };
    Duration m_nextRound { 0 };
    std::optional<Allowance> m_prepared;
    bool m_wasUrgent = false; ///< the last stop that was sent
    Duration m_passEnd { 0 };
    Duration m_end { 0 }; // of the rounds
    bool m_isBroadcast = false;
    bool m_broadcastIsDue = false;
};

} // namespace dx4::host
