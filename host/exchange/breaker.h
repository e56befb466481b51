// SPDX-License-Identifier: MIT
// Leaves a station alone that does not answer, so that it does not slow the others down.
#pragma once

#include "host/exchange/guarded_exchange.h"

#include <functional>
#include <map>
#include <optional>
#include <set>

namespace dx4::host {

/// When a station is left alone, and how often it is tried again.
struct BreakerSettings {
    int giveUps = 2; ///< requests given up in a row, 1 or more; one of a station never heard
    Duration firstDelay = std::chrono::seconds(1); ///< from the last give-up to the first probe
    /// Longest time between two probes. The probe itself and one exchange before it come on top: 9
    /// s bring a station back within 10.
    Duration longestDelay = std::chrono::seconds(9);
};

/// Knows which stations answer. Time is handed in; nothing runs by itself.
///
/// A station is *in doubt* from a try that it did not answer to its next sign of life, and before
/// its first answer. It is *left alone* once enough requests were given up, and probed from then on
/// where somebody still wants something of it.
class Breaker {
public:
    explicit Breaker(const BreakerSettings &settings = BreakerSettings());

    /// The stations that are polled. Those and the ones named by noteAsked() are probed.
    void setPolled(const std::set<int> &stations) { m_polled = stations; }
    int polledStations() const { return static_cast<int>(m_polled.size()); }

    /// Somebody wanted something of the station besides polling.
    void noteAsked(int station) { m_stations[station].isAsked = true; }

    /// The station answered, be it with an exception: it is asked as ever.
    void noteAnswer(int station, Duration now);

    /// A try brought no answer.
    void noteSilence(int station);

    /// A request was given up, or a probe failed: the next probe comes after twice the time.
    void noteGiveUp(int station, Duration now);

    /// A failed probe held the line for so long. Where another station answers, the next probe of
    /// whichever station waits for three times that, so that the dead use no more than a quarter of
    /// the line.
    void noteProbeCost(Duration held, Duration now);

    /// A late reply or another frame of the station was heard. It is out of doubt; one that is left
    /// alone is probed at once, and the probe waits for the full response timeout.
    void noteSignOfLife(int station, Duration now);

    /// The probe could not be sent; it is due later.
    void postponeProbe(int station, Duration until) { m_stations[station].probeAt = until; }

    bool isInDoubt(int station) const;
    bool isLeftAlone(int station) const;
    bool hasAnswered(int station) const; ///< at least once

    /// Whether a request of this station may be tried once more though nothing came. After six
    /// tries in a row it may not, nor where the station was never heard.
    bool mayRetry(int station) const;

    /// Moment of the latest answer.
    std::optional<Duration> lastAnswer(int station) const;

    /// Stations that have answered and are not left alone.
    std::vector<int> living() const;

    /// The station whose probe is due, of several the one that waits longest.
    std::optional<int> dueProbe(Duration now) const;

    /// When the next probe is due; none while every station is asked.
    std::optional<Duration> nextProbe() const;

    /// How long the next probe waits for an answer.
    ///
    /// A fortieth of the time before it, which is 2.5 % of the line; never less than `living`, and
    /// the share of the longest delay already where the probe after it would come later than that.
    /// Every eighth waits for the full response timeout, as the station may be slow; so do the
    /// third of a station that was never heard and the first after a sign of life.
    ///
    /// @param living  what a living station takes to answer
    Duration probeTimeout(int station, Duration responseTimeout, Duration living) const;

private:
    struct Station {
        int givenUp = 0; ///< requests in a row
        int silent = 0; ///< tries in a row
        int probes = 0; ///< that failed since the station is left alone
        bool hasAnswered = false;
        bool isInDoubt = true;
        bool showedLife = false; ///< since the last try
        bool isAsked = false;
        Duration answeredAt { 0 };
        Duration delay { 0 }; ///< before the next probe; 0 while the station is asked
        Duration probeAt { 0 };
    };

    const Station *find(int station) const;
    bool isProbed(int station, const Station &state) const;

    BreakerSettings m_settings;
    std::map<int, Station> m_stations;
    std::set<int> m_polled;
    Duration m_restUntil { 0 }; ///< no probe before
};

/// What a request is for, which says how long the others wait for it.
enum class Purpose {
    Polled, ///< a cyclic read
    Asked, ///< a one-off read or a write
    Urgent, ///< a write that is sent even to a station that is left alone
    Bounded, ///< the same, and whoever sends it says how long it may take
};

/// Asks the breaker before it uses the line.
///
/// A request to a station that is left alone fails without the line, unless it is urgent. A
/// polled read of a station in doubt waits as briefly as a living station needs. Both only matter
/// where several stations are polled: one alone takes nothing from others.
class BreakerExchange : public Exchange {
public:
    using PurposeOf = std::function<Purpose(const FRAME_PRO &)>;
    using AllowanceOf = std::function<Allowance(int station)>;

    /// All of them outlive the exchange. Until told otherwise every request counts as asked.
    BreakerExchange(Line &line, GuardedExchange &guard, Breaker &breaker);

    /// @param purposeOf    tells what a request is for
    /// @param allowanceOf  how long a bounded request that is about to be sent may take
    void setPurposes(PurposeOf purposeOf, AllowanceOf allowanceOf);

    Reply run(const FRAME_PRO &request) override;
    const ExchangeReport &report() const override { return m_guard.report(); }

    /// Probes a station that is left alone.
    Reply probe(int station);

    /// Takes in what came since the last exchange: who was heard showed life.
    void listen();

    /// How long a living station takes to answer at most, as far as it is known: one and a half of
    /// its slowest recent answer. One that was never heard gets 100 ms.
    Duration livingTimeout(int station) const;

    /// The same with more patience, for what is not urgent: twice the slowest answer; of a station
    /// never heard 100 ms, twice that of the slowest other station, or its share of one second.
    Duration doubtTimeout(int station) const;

    /// How long the next probe of a station waits.
    Duration probeTimeout(int station) const;

private:
    Reply poll(const FRAME_PRO &request);
    Reply askOnce(const FRAME_PRO &request, const Allowance &allowance);
    void noteReport(int station, const Reply &reply);
    void noteHeard();

    Line &m_line;
    GuardedExchange &m_guard;
    Breaker &m_breaker;
    PurposeOf m_purposeOf;
    AllowanceOf m_allowanceOf;
};

/// Whether the reply came from the station that was asked, whatever it says.
bool isAnswer(ReplyCause cause);

/// Whether the request went out on a line that still worked afterwards.
bool wasAsked(const Reply &reply);

} // namespace dx4::host
