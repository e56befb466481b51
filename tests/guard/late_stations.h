// SPDX-License-Identifier: MIT
// Stations that answer late, in order or not at all, behind an adapter and among noise.
#pragma once

#include "chance.h"
#include "forgery.h"
#include "host/line/line_settings.h"

#include <QByteArray>

#include <deque>
#include <map>
#include <optional>
#include <vector>

/// How a station spends its time.
struct LateHabit {
    enum class Pattern { Constant, Drifting, Random };

    Pattern pattern = Pattern::Constant;
    bool buffers = true; ///< keeps requests that come while it is busy; else it drops them
    dx4::host::Duration quickest { 0 }; ///< end of a request to its reply
    dx4::host::Duration slowest { 0 };
    unsigned lossPerMille = 0; ///< requests that it does not hear
    bool isOff = false;
};

/// What the line does to frames, each in so many of 1000.
struct LineHabit {
    bool echoes = false;
    unsigned damaged = 0; ///< one to three bits of a frame turned
    unsigned lost = 0; ///< a frame that does not arrive
    unsigned foreign = 0; ///< a frame of another station, another master's broadcast, or junk
    unsigned lateEcho = 0; ///< the adapter holds what it hears for up to 1.2 timeouts
};

/// A write that a station carried out.
struct CarriedOut {
    QByteArray request;
    dx4::host::Duration at { 0 };
};

/// The far end of a line. It knows no clock: who plays it tells the time, which never goes back. A
/// register shows values that no other register ever shows: see ordinalOf().
class LateStations {
public:
    static constexpr int registerSpan = 64; ///< ordinals of one station
    static constexpr int ordinals = 256; ///< values of one register lie this far apart

    struct Arrival {
        dx4::host::Duration at;
        char byte;
    };

    LateStations(const dx4::host::LineSettings &settings, const LineHabit &line, Chance &chance);

    void add(int number, const LateHabit &habit);
    LateHabit &habitOf(int station) { return m_stations.at(station).habit; }

    /// The longest that a station takes; the response timeout for one that is not there.
    dx4::host::Duration slowestOf(int station) const;
    bool echoes() const { return m_habit.echoes; }

    /// Switches a station off, or on again; what it had in hand is lost.
    void setOff(int station, bool isOff, dx4::host::Duration now);

    /// Remainder of each value of a register when it is divided by `ordinals`.
    int ordinalOf(int station, int registerAddress) const;

    /// How often the registers have changed by a moment; the quotient of that division.
    static int versionAt(dx4::host::Duration moment);

    /// Whether the station refuses this register.
    static bool isRefused(int registerAddress) { return registerAddress % 16 == 15; }

    /// What a station was told and did, in order.
    std::vector<CarriedOut> carriedOut(int station) const;

    /// A request whose last byte is on the line at `end`.
    void hear(const QByteArray &request, dx4::host::Duration end);

    /// The next byte for the master, unless it comes after `until`.
    std::optional<Arrival> nextBy(dx4::host::Duration until);

    /// Takes that byte away.
    void takeNext() { m_arrivals.pop_front(); }

    /// Moment from which nextBy() has something; none while nothing is on its way.
    std::optional<dx4::host::Duration> nextAt() const;

private:
    struct Station {
        int index = 0;
        LateHabit habit;
        dx4::host::Duration busyUntil { 0 };
        std::vector<CarriedOut> carriedOut;
    };
    struct Due {
        QByteArray bytes;
        int station = 0; ///< 0: of nobody who could be switched off
        bool isWhole = false; ///< a frame as somebody sent it
    };

    dx4::host::Duration latencyOf(const Station &station, dx4::host::Duration now);
    void echo(const QByteArray &request, dx4::host::Duration end);
    void deliver(int number, const QByteArray &request, dx4::host::Duration end);
    QByteArray replyOf(int number, Station &station, const QByteArray &request,
                       dx4::host::Duration at);
    void addNoise(const QByteArray &request, dx4::host::Duration end);
    QByteArray junk(unsigned count);
    QByteArray damaged(QByteArray frame);
    void put(dx4::host::Duration at, const Due &due);
    void putFrame(dx4::host::Duration at, const QByteArray &frame, int station);
    void materialise();

    dx4::host::LineSettings m_settings;
    LineHabit m_habit;
    Chance &m_chance;
    std::map<int, Station> m_stations;
    std::multimap<dx4::host::Duration, Due> m_due;
    std::deque<Arrival> m_arrivals;
    Forgery m_forgery;
    dx4::host::Duration m_lastArrival { 0 };
    dx4::host::Duration m_held { 0 }; ///< by the adapter, no reply overtakes another
    int m_echoesLost = 0; ///< in a row
};
