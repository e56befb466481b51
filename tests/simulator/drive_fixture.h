// SPDX-License-Identifier: MIT
// One drive behind its registers, in virtual time.
#pragma once

#include "simulator/inverter.h"

#include <gtest/gtest.h>

#include <vector>

// Control words.
inline constexpr std::uint16_t run = 0x0001;
inline constexpr std::uint16_t runReverse = 0x0003;
inline constexpr std::uint16_t stop = 0x0000;
inline constexpr std::uint16_t reset = 0x0080;

/// What DriveModel::figures() gives while the motor stands and the mains have 400 V.
inline const std::vector<int> standing = { 0, 0, 0, 566, 0 };

/// One drive in virtual time, at 0 and standing still. Tests of ramps, trips and resets derive from
/// it.
class DriveModel : public ::testing::Test {
protected:
    void pass(int milliseconds)
    {
        now += std::chrono::milliseconds(milliseconds);
        inverter.advanceTo(now);
    }

    void start(std::uint16_t hundredthHertz, std::uint16_t control = run)
    {
        inverter.write(dx4::sim::frequencyRegister, hundredthHertz);
        inverter.write(dx4::sim::controlWordRegister, control);
    }

    int monitor(unsigned index) const
    {
        return inverter.read(static_cast<std::uint16_t>(dx4::sim::firstMonitorRegister + index));
    }

    int status() const { return inverter.read(dx4::sim::statusWordRegister); }
    int fault() const { return inverter.read(dx4::sim::faultCodeRegister); }

    /// Output frequency, current, voltage, DC link and power.
    std::vector<int> figures() const
    {
        return { monitor(0), monitor(2), monitor(3), monitor(4), monitor(6) };
    }

    /// Brings the heat sink to this temperature in one step of 5 ms, which goes a 12000th of the
    /// way to that of the surroundings.
    void heatTo(double celsius)
    {
        const double before = inverter.drive().celsius();
        inverter.drive().setAmbient(before + (celsius - before) * 12000.0);
        pass(5);
        inverter.drive().setAmbient(celsius);
    }

    dx4::sim::Micros now { 0 };
    dx4::sim::Inverter inverter;
};
