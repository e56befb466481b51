// SPDX-License-Identifier: MIT
// Two stations whose registers each hold values of their own, and a memory of all they ever held.
#pragma once

#include "simulator/bus.h"
#include "simulator/clock.h"

#include <set>
#include <string>
#include <vector>

namespace dx4::faults {

/// One register as the driver and as the line know it.
struct Register {
    int station;
    std::string type;
    int address; ///< internal
    std::uint16_t modbus; ///< Modbus register
    bool isPolled; ///< false for those that can only be written
    bool isWritten; ///< the host writes it, so the plant leaves it alone

    std::string name() const; ///< such as "1 F 2562"
};

/// Internal address of parameter `index` of "c", the last group.
constexpr int parameterC(int index)
{
    return 10 * 256 + index;
}

/// The stations 1 and 2. No two registers ever hold the same value, unless a fault brings it about,
/// so a value that stands in the wrong place of the cache is known as such.
class Plant {
public:
    explicit Plant(const sim::VirtualClock &clock);

    sim::Bus &bus() { return m_bus; }
    const std::vector<Register> &registers() const { return m_registers; }

    /// Gives all registers that the host does not write a new value.
    void change();

    /// Notes what every register holds now.
    void remember();

    /// What a register holds; for FRE the set frequency in 0.01 Hz, for CW whether the drive runs.
    int heldNow(const Register &reg);

    /// Whether the register held the value at any time that was remembered.
    bool everHeld(std::size_t reg, int value) const { return m_held[reg].count(value) > 0; }

    /// A value that only this register gets, to be written to it; 0 to 99 choose which.
    static int valueToWrite(std::size_t reg, int which);

    /// Place of a register in registers().
    std::size_t find(int station, const std::string &type, int address) const;

private:
    void addStation(int station);
    void add(const Register &reg);

    const sim::VirtualClock &m_clock;
    sim::Bus m_bus;
    std::vector<Register> m_registers;
    std::vector<std::set<int>> m_held; ///< per register
    int m_changes = 0;
};

} // namespace dx4::faults
