// SPDX-License-Identifier: MIT
// The stop that is sent when nobody watches any more, and followed until it is confirmed.
#pragma once

#include "host/cycle.h"

#include <QVector>

#include <map>

namespace dx4::host {

/// What stops one station.
struct StopCommand {
    int station = 1;
    quint16 controlWord = 0; ///< value of "CW"
};

/// Sends each station's stop ahead of everything else, again and again until its echo came.
///
/// Between two tries of the same station lies a growing delay, up to 10 s, so that a dead one does
/// not take the line from those that still have to stop.
class SafeStop {
public:
    /// @param link  outlives the stop
    SafeStop(Link &link, const QVector<StopCommand> &commands);

    /// Replaces the list. A station whose stop is not confirmed yet keeps its command.
    void setCommands(QVector<StopCommand> commands);

    /// Starts to stop every station of the list.
    void begin();

    /// Tries every unconfirmed station without delay: the line is back.
    void tryNow();

    /// Tries one station without delay: it answered another request.
    void tryStation(int station);

    /// Puts the stops that are due before everything that waits in the driver. Requests in progress
    /// and writes ahead of them are given up.
    ///
    /// @param now  the line's clock
    void prepare(Duration now);

    /// To be called after each step of the cycle that was not Idle.
    void afterStep(const Cycle &cycle, Cycle::Step step, Duration now);

    /// Whether there is a station to stop.
    bool isConfigured() const { return !m_commands.isEmpty(); }

    bool isPending() const { return !m_pending.empty(); }

    /// Stations whose stop was not confirmed, ascending.
    QVector<int> unconfirmed() const;

    /// Whether a write of "CW" is a station's configured stop.
    bool isStop(int station, const QVector<quint16> &values) const;

private:
    struct Try {
        Duration notBefore { 0 };
        Duration delay { 0 };
    };

    bool isQueued(int station) const;

    Link &m_link;
    QVector<StopCommand> m_commands;
    std::map<int, Try> m_pending; // by station
};

} // namespace dx4::host
