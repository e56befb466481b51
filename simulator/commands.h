// SPDX-License-Identifier: MIT
// What a user or a test types while the simulator serves.
#pragma once

#include "simulator/cable.h"
#include "simulator/reporter.h"

#include <string>
#include <vector>

namespace dx4::sim {

/// Runs commands against the stations and the cable. "help" lists them.
class Commands {
public:
    /// All three must outlive it.
    Commands(Bus &bus, Cable &cable, const Clock &clock, Reporter &reporter);

    /// Runs one line and reports its outcome; an empty line is ignored.
    /// @return false when the simulator is to end
    bool run(const std::string &line);

private:
    using Words = std::vector<std::string>;
    struct Row;

    static const std::vector<Row> &table();
    void obey(const Words &words);
    void status(const Words &words);
    void get(const Words &words);
    void set(const Words &words);
    void hold(const Words &words);
    void release(const Words &words);
    void trip(const Words &words);
    void mains(const Words &words);
    void ambient(const Words &words);
    void powerCycle(const Words &words);
    void unplug(const Words &words);
    void plug(const Words &words);
    void fault(const Words &words);
    void faultsOff(const Words &words);
    void help(const Words &words);
    bool chooseStation(Words &words);
    std::uint16_t registerOf(const std::string &word) const;

    Bus &m_bus;
    Cable &m_cable;
    const Clock &m_clock;
    Reporter &m_reporter;
    Inverter *m_inverter = nullptr; ///< the one the command is for
};

} // namespace dx4::sim
