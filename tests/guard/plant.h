// SPDX-License-Identifier: MIT
// What a trial asks of the line and the stations that it tries a host on.
#pragma once

#include "host/line/line.h"
#include "late_stations.h"

#include <string>

class Plant {
public:
    Plant() = default;
    virtual ~Plant() = default;
    Plant(const Plant &) = delete;
    Plant &operator=(const Plant &) = delete;

    /// The host's end.
    virtual dx4::host::Line &line() = 0;

    virtual void addStation(int number, const LateHabit &habit) = 0;

    /// Switches a station off, or on again; what it had in hand is lost.
    virtual void toggle(int station) = 0;

    /// See LateStations::ordinalOf().
    virtual int ordinalOf(int station, int registerAddress) const = 0;

    /// What a station was told and did, in order.
    virtual std::vector<CarriedOut> carriedOut(int station) const = 0;

    /// What happened last, for a plant that cannot be played once more.
    virtual std::string history() const { return {}; }
};
