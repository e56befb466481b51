// SPDX-License-Identifier: MIT
// Stations that answer late, in order or not at all, behind an adapter and among noise.
#pragma once

#include "chance.h"
#include "host/line.h"

#include <deque>
#include <map>
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

/// A line in virtual time. A register shows values that no other register of the plant ever shows:
/// see ordinalOf().
class LatePlant : public dx4::host::Line {
public:
    static constexpr int registerSpan = 64; ///< ordinals of one station
    static constexpr int ordinals = 256; ///< values of one register lie this far apart

    LatePlant(const dx4::host::LineSettings &settings, const LineHabit &line, Chance &chance);

    void addStation(int number, const LateHabit &habit);
    LateHabit &habitOf(int station) { return m_stations.at(station).habit; }

    /// The longest that a station takes; the response timeout for one that is not there.
    dx4::host::Duration slowestOf(int station) const;
    bool echoes() const { return m_habit.echoes; }

    /// Switches a station off, or on again; what it had in hand is lost.
    void setOff(int station, bool isOff);

    /// Remainder of each value of a register when it is divided by `ordinals`.
    int ordinalOf(int station, int registerAddress) const;

    /// How often the registers have changed by a moment; the quotient of that division.
    int versionAt(dx4::host::Duration moment) const;

    /// Whether the station refuses this register.
    static bool isRefused(int registerAddress) { return registerAddress % 16 == 15; }

    /// What a station was told and did, in order.
    std::vector<CarriedOut> carriedOut(int station) const;

    bool open(QString *error) override;
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    const dx4::host::LineSettings &settings() const override { return m_settings; }
    dx4::host::Duration now() const override { return m_now; }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, dx4::host::Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(dx4::host::Duration gap, dx4::host::Duration deadline) override;

private:
    struct Station {
        int index = 0;
        LateHabit habit;
        dx4::host::Duration busyUntil { 0 };
        dx4::host::Duration offAt { 0 }; ///< replies after this moment are not given any more
        std::vector<CarriedOut> carriedOut;
    };
    struct Due {
        QByteArray bytes;
        int station = 0; ///< 0: of nobody who could be switched off
    };
    struct Arrival {
        dx4::host::Duration at;
        char byte;
    };

    dx4::host::Duration latencyOf(Station &station);
    void deliver(int number, const QByteArray &request, dx4::host::Duration end);
    QByteArray replyOf(int number, Station &station, const QByteArray &request,
                       dx4::host::Duration at);
    void addNoise(const QByteArray &request);
    QByteArray damaged(QByteArray frame);
    void put(dx4::host::Duration at, const QByteArray &bytes, int station);
    void materialise();

    dx4::host::LineSettings m_settings;
    LineHabit m_habit;
    Chance &m_chance;
    std::map<int, Station> m_stations;
    std::multimap<dx4::host::Duration, Due> m_due;
    std::deque<Arrival> m_arrivals;
    dx4::host::Duration m_now { 0 };
    dx4::host::Duration m_lastArrival { 0 };
    dx4::host::Duration m_held { 0 }; ///< by the adapter, no reply overtakes another
    bool m_open = true;
};
