// SPDX-License-Identifier: MIT
// The stations on one line.
#include "simulator/bus.h"

namespace dx4::sim {

struct Bus::Station {
    explicit Station(int number)
        : slave(number, inverter)
    {
    }

    Inverter inverter; // before the slave, which keeps a reference
    Slave slave;
};

Bus::Bus() = default;
Bus::~Bus() = default;

Inverter &Bus::add(int station)
{
    std::unique_ptr<Station> &place = m_stations[station];
    if (!place) {
        try {
            place = std::make_unique<Station>(station);
        } catch (...) {
            m_stations.erase(station);
            throw;
        }
    }
    return place->inverter;
}

Inverter *Bus::find(int station)
{
    const auto found = m_stations.find(station);
    return found == m_stations.end() ? nullptr : &found->second->inverter;
}

std::vector<int> Bus::stations() const
{
    std::vector<int> numbers;
    for (const auto &[number, station] : m_stations)
        numbers.push_back(number);
    return numbers;
}

void Bus::advanceTo(Micros now)
{
    for (const auto &[number, station] : m_stations)
        station->inverter.advanceTo(now);
}

Bytes Bus::deliver(const Bytes &request, Micros now)
{
    advanceTo(now);
    Bytes reply;
    for (const auto &[number, station] : m_stations) {
        if (!station->inverter.powered())
            continue;
        const bool heard = hasGoodCrc(request) && (request[0] == number || request[0] == 0);
        if (heard)
            station->inverter.noteRequest(now);
        const Bytes answered = station->slave.answer(request);
        reply.insert(reply.end(), answered.begin(), answered.end());
    }
    return reply;
}

} // namespace dx4::sim
