// SPDX-License-Identifier: MIT
// Leaves a station alone that does not answer, so that it does not slow the others down.
#pragma once

#include "host/guarded_exchange.h"

#include <map>
#include <optional>

namespace dx4::host {

/// When a station is left alone, and how often it is tried again.
struct BreakerSettings {
    int giveUps = 2; ///< requests given up in a row, 1 or more
    Duration firstDelay = std::chrono::seconds(1); ///< from the last give-up to the first probe
    /// Longest time between two probes. A rotation and the probe itself come on top: 9 s bring a
    /// station back within 10.
    Duration longestDelay = std::chrono::seconds(9);
};

/// Knows which stations answer. Time is handed in; nothing runs by itself.
class Breaker {
public:
    enum class Verdict {
        Ask,
        Probe, ///< left alone, and the time for one try has come
        Leave, ///< left alone; the line is not to be used
    };

    explicit Breaker(const BreakerSettings &settings = BreakerSettings());

    Verdict judge(int station, Duration now) const;

    /// Response timeout of a probe: a fortieth of the delay before it, so that probes take 2.5 % of
    /// the line; the full one for every eighth probe, as the station may be slow, and after a sign
    /// of life.
    Duration probeTimeout(int station, Duration responseTimeout) const;

    /// The station answered, be it with an exception: it is asked as ever.
    void noteAnswer(int station);

    /// A request was given up, or a probe failed: the next one waits twice as long.
    void noteGiveUp(int station, Duration now);

    /// A frame came from a station that is left alone, too late for its probe: the next probe comes
    /// at once and waits for the full response timeout.
    void noteSignOfLife(int station, Duration now);

    bool isLeftAlone(int station) const;
    bool hasAnswered(int station) const; ///< at least once

    /// When the next probe is due; none while every station is asked.
    std::optional<Duration> nextProbe() const;

private:
    struct Station {
        int givenUp = 0; ///< in a row
        bool answered = false;
        bool showedLife = false;
        Duration delay { 0 }; ///< before the next probe; 0 while the station is asked
        Duration probeAt { 0 };
    };

    BreakerSettings m_settings;
    std::map<int, Station> m_stations;
};

/// Asks the breaker before it uses the line. A probe is one try: what is left of the driver's tries
/// fails without the line.
class BreakerExchange : public Exchange {
public:
    /// All of them outlive the exchange.
    BreakerExchange(Line &line, GuardedExchange &guard, Breaker &breaker);

    Reply run(const FRAME_PRO &request) override;
    const ExchangeReport &report() const override { return m_guard.report(); }

private:
    Reply probe(const FRAME_PRO &request);

    Line &m_line;
    GuardedExchange &m_guard;
    Breaker &m_breaker;
};

/// Whether the reply came from the station that was asked, whatever it says.
bool isAnswer(ReplyCause cause);

} // namespace dx4::host
