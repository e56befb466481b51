// SPDX-License-Identifier: MIT
// Two stations whose registers each hold values of their own, and a memory of all they ever held.
#include "plant.h"

#include <cmath>
#include <stdexcept>

namespace dx4::faults {

namespace {

constexpr int valuesPerRegister = 1000;
constexpr int changedValues = 900; // of those; the others are for writes

int valueOf(std::size_t reg, int which)
{
    return static_cast<int>(reg + 1) * valuesPerRegister + which;
}

} // namespace

std::string Register::name() const
{
    return std::to_string(station) + ' ' + type + ' ' + std::to_string(address);
}

Plant::Plant(const sim::VirtualClock &clock)
    : m_clock(clock)
{
    addStation(1);
    addStation(2);
    for (std::size_t i = 0; i < m_registers.size(); ++i) {
        const Register &reg = m_registers[i];
        if (reg.isPolled && reg.isWritten)
            m_bus.find(reg.station)->write(reg.modbus, static_cast<std::uint16_t>(valueOf(i, 0)));
    }
    change();
}

void Plant::addStation(int station)
{
    m_bus.add(station);
    add({ station, "F", 0, 0xF000, true, true });
    add({ station, "F", 1, 0xF001, true, true });
    add({ station, "F", parameterC(2), 0xFC02, true, true });
    add({ station, "F", parameterC(3), 0xFC03, true, true });
    add({ station, "F", parameterC(4), 0xFC04, true, false });
    add({ station, "D", 0, 0xD000, true, false });
    add({ station, "D", 1, 0xD001, true, false });
    add({ station, "D", 7, 0xD007, true, false });
    add({ station, "D", 8, 0xD008, true, false });
    add({ station, "SW", 0, sim::statusWordRegister, true, false });
    add({ station, "FU", 0, sim::faultCodeRegister, true, false });
    add({ station, "CW", 0, sim::controlWordRegister, false, true });
    add({ station, "FRE", 0, sim::frequencyRegister, false, true });
}

void Plant::add(const Register &reg)
{
    m_registers.push_back(reg);
    m_held.emplace_back();
}

void Plant::change()
{
    ++m_changes;
    for (std::size_t i = 0; i < m_registers.size(); ++i) {
        const Register &reg = m_registers[i];
        const int value = valueOf(i, m_changes % changedValues);
        if (!reg.isWritten)
            m_bus.find(reg.station)->hold(reg.modbus, static_cast<std::uint16_t>(value));
    }
    remember();
}

void Plant::remember()
{
    for (std::size_t i = 0; i < m_registers.size(); ++i)
        m_held[i].insert(heldNow(m_registers[i]));
}

int Plant::heldNow(const Register &reg)
{
    sim::Inverter &inverter = *m_bus.find(reg.station);
    inverter.advanceTo(m_clock.now());
    if (reg.modbus == sim::controlWordRegister) {
        // The drive starts with its next step; the echo of an adapter may be heard before.
        inverter.advanceTo(m_clock.now() + sim::Drive::step);
        return inverter.drive().running() ? 1 : 0;
    }
    if (reg.modbus == sim::frequencyRegister)
        return static_cast<int>(std::lround(inverter.drive().setHertz() * 100.0));
    return inverter.read(reg.modbus);
}

int Plant::valueToWrite(std::size_t reg, int which)
{
    return valueOf(reg, changedValues + which);
}

std::size_t Plant::find(int station, const std::string &type, int address) const
{
    for (std::size_t i = 0; i < m_registers.size(); ++i) {
        const Register &reg = m_registers[i];
        if (reg.station == station && reg.type == type && reg.address == address)
            return i;
    }
    throw std::out_of_range("no register " + type + ' ' + std::to_string(address));
}

} // namespace dx4::faults
