// SPDX-License-Identifier: MIT
// The stations on one line.
#pragma once

#include "simulator/inverter.h"
#include "simulator/slave.h"

#include <map>
#include <memory>
#include <vector>

namespace dx4::sim {

/// The inverters that hear the same line. Owns them.
class Bus {
public:
    Bus();
    ~Bus();
    Bus(const Bus &) = delete;
    Bus &operator=(const Bus &) = delete;

    /// Adds an inverter as this station, 1 to 247, and gives it; the one that is there already
    /// where the number is taken. Throws as Slave does.
    Inverter &add(int station);

    /// The inverter of this station; null when there is none.
    Inverter *find(int station);

    /// Numbers of all stations, ascending.
    std::vector<int> stations() const;

    /// Lets time pass for every inverter.
    void advanceTo(Micros now);

    /// Hands a request, complete with CRC at time `now`, to every station that has power, and gives
    /// the reply; empty when nobody answers.
    Bytes deliver(const Bytes &request, Micros now);

private:
    struct Station;
    std::map<int, std::unique_ptr<Station>> m_stations;
};

} // namespace dx4::sim
