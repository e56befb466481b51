// SPDX-License-Identifier: MIT
// One inverter as its registers show it: parameters, monitor values, commands and state.
#pragma once

#include "simulator/drive.h"
#include "simulator/register_map.h"

#include <cstdint>
#include <map>
#include <set>

namespace dx4::sim {

/// Lowest and highest value a register takes.
struct Limits {
    std::uint16_t lowest = 0;
    std::uint16_t highest = 0xFFFF;
};

/// Register model of one station. The meaning of the single registers is this simulator's own
/// choice and stands in docs/simulator.md.
class Inverter {
public:
    /// Parameters at their defaults, drive standing still at time 0.
    Inverter();

    /// Value of a register as a read request gives it. Registers that cannot be read give 0.
    std::uint16_t read(std::uint16_t address) const;

    /// Whether a write request may set this value; registers that cannot be written accept none.
    bool accepts(std::uint16_t address, std::uint16_t value) const;

    /// Sets a parameter or hands a command to the drive; ignored where accepts() says no.
    void write(std::uint16_t address, std::uint16_t value);

    /// Makes a readable register show `value` whatever the drive does, until release(). A write to
    /// a held parameter is taken but not shown.
    void hold(std::uint16_t address, std::uint16_t value) { m_held[address] = value; }

    /// Ends hold(); registers that are not held are left alone.
    void release(std::uint16_t address) { m_held.erase(address); }

    /// Takes a register away, as of a drive that does not have it; its value goes on to count.
    void remove(std::uint16_t address) { m_removed.insert(address); }

    /// Whether there is such a register and it was not taken away.
    bool has(std::uint16_t address) const { return bandOf(address) && !m_removed.count(address); }

    /// Limits of a register that can be written.
    static Limits limitsOf(std::uint16_t address);

    /// Lets time pass for the drive; an earlier time is ignored.
    void advanceTo(Micros now);

    /// Notes a request of the master at `now`, for the time of communication loss.
    void noteRequest(Micros now) { m_drive.noteRequest(now); }

    /// Takes the power away at `now` and gives it back after `duration`. Parameters are kept, the
    /// drive starts without command and fault, held registers stay held.
    void powerCycle(Micros now, Micros duration);

    /// Whether it has power, as of the last advanceTo().
    bool powered() const { return !m_off; }

    Drive &drive() { return m_drive; }
    const Drive &drive() const { return m_drive; }

private:
    DriveSettings settings() const;
    std::uint16_t parameter(unsigned group, unsigned index) const;
    std::uint16_t monitor(std::uint16_t address) const;

    std::map<std::uint16_t, std::uint16_t>
        m_parameters; ///< F registers; one that is not here holds 0
    std::map<std::uint16_t, std::uint16_t> m_held;
    std::set<std::uint16_t> m_removed;
    Drive m_drive;
    bool m_off = false;
    Micros m_powerAt { 0 }; ///< when the power comes back, while m_off
};

} // namespace dx4::sim
