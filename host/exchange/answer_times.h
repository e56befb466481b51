// SPDX-License-Identifier: MIT
// How long each station takes to answer, and how long it is waited for.
#pragma once

#include "host/line/line_settings.h"

#include <QString>

#include <map>
#include <optional>

namespace dx4::host {

/// A station that answers later than the response timeout of the line, several times in a row, is
/// waited for longer: as long as it needed and a quarter more, at most `mostTimeouts` response
/// timeouts. When it is quick again the timeout comes down to the line's own.
class AnswerTimes {
public:
    explicit AnswerTimes(Duration responseTimeout);

    /// A reply came.
    ///
    /// @param number  of the station
    /// @param delay   end of the request to the first byte of its reply; of the earliest request
    ///                where several can have brought it
    /// @param sure    only one request can have brought it
    void noteAnswer(int number, Duration delay, bool sure);

    /// Response timeout of a station: the line's own, or a longer one that was learnt.
    Duration timeoutOf(int station) const;

    /// The slowest of its last answers; none before the first of which the request is sure.
    std::optional<Duration> slowestOf(int station) const;

    /// Whether the station needs more than the line's own timeout.
    bool isSlow(int station) const { return timeoutOf(station) > m_responseTimeout; }

    /// The last change of a timeout in words, once; empty when there was none since.
    QString takeNotice();

private:
    struct Station {
        std::optional<Duration> slowest; ///< of the last sure answers, older ones counting less
        Duration timeout { 0 };
        int lateInARow = 0;
        Duration latest { 0 }; ///< the slowest of these
        int promptInARow = 0;
    };

    void raise(int number, Station &station);
    void lower(int number, Station &station);

    Duration m_responseTimeout;
    std::map<int, Station> m_stations;
    QString m_notice;
};

/// Bound of what is learnt, in response timeouts.
inline constexpr int mostTimeouts = 8;

} // namespace dx4::host
