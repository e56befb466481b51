// SPDX-License-Identifier: MIT
// One inverter as its registers show it: parameters, monitor values, commands and state.
#include "simulator/inverter.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace dx4::sim {

namespace {

/// The group whose parameters shape the drive; all others only store what is written.
constexpr unsigned driveGroup = 8;

enum DriveParameter : unsigned {
    MaximumFrequency = 0,
    MinimumFrequency = 1,
    AccelerationTime = 2,
    DecelerationTime = 3,
    RatedVoltage = 4,
    RatedCurrent = 5,
    RatedFrequency = 6,
    LoadTorque = 7,
    CommunicationTime = 8,
};

struct ParameterRow {
    Limits limits;
    std::uint16_t initial;
};

constexpr ParameterRow driveParameters[] = {
    // lowest, highest, initial
    { { 100, 40000 }, 5000 }, // MaximumFrequency, 0.01 Hz
    { { 0, 40000 }, 0 }, // MinimumFrequency, 0.01 Hz
    { { 0, 36000 }, 50 }, // AccelerationTime, 0.1 s
    { { 0, 36000 }, 50 }, // DecelerationTime, 0.1 s
    { { 100, 480 }, 400 }, // RatedVoltage, V
    { { 1, 9999 }, 100 }, // RatedCurrent, 0.1 A
    { { 100, 40000 }, 5000 }, // RatedFrequency, 0.01 Hz
    { { 0, 150 }, 40 }, // LoadTorque, percent
    { { 0, 9999 }, 0 }, // CommunicationTime, 0.1 s
};

constexpr Limits frequencyLimits = { 0, 40000 }; // 0.01 Hz

std::uint16_t scaled(double value, double factor)
{
    return static_cast<std::uint16_t>(std::clamp(std::round(value * factor), 0.0, 65535.0));
}

std::uint16_t seconds(Micros time)
{
    // A register starts again at 0 behind 65535 s.
    return static_cast<std::uint16_t>(
        std::chrono::duration_cast<std::chrono::seconds>(time).count());
}

} // namespace

Inverter::Inverter()
{
    unsigned index = 0;
    for (const ParameterRow &row : driveParameters)
        m_parameters[parameterRegister(driveGroup, index++)] = row.initial;
}

Limits Inverter::limitsOf(std::uint16_t address)
{
    if (address == frequencyRegister)
        return frequencyLimits;
    const unsigned index = unsigned { address } - parameterRegister(driveGroup, 0);
    return index < std::size(driveParameters) ? driveParameters[index].limits : Limits {};
}

std::uint16_t Inverter::read(std::uint16_t address) const
{
    const auto held = m_held.find(address);
    if (held != m_held.end())
        return held->second;
    if (address == statusWordRegister)
        return m_drive.statusWord();
    if (address == faultCodeRegister)
        return static_cast<std::uint16_t>(m_drive.fault());
    const auto found = m_parameters.find(address);
    return found != m_parameters.end() ? found->second : monitor(address);
}

bool Inverter::accepts(std::uint16_t address, std::uint16_t value) const
{
    if (!has(address) || !bandOf(address)->writable)
        return false;
    const Limits limits = limitsOf(address);
    return value >= limits.lowest && value <= limits.highest;
}

void Inverter::write(std::uint16_t address, std::uint16_t value)
{
    if (!accepts(address, value))
        return;
    if (address == controlWordRegister)
        m_drive.control(value);
    else if (address == frequencyRegister)
        m_drive.setFrequency(value / 100.0);
    else
        m_parameters[address] = value;
}

void Inverter::advanceTo(Micros now)
{
    if (m_off && now < m_powerAt)
        return;
    if (m_off) {
        m_off = false;
        m_drive.restart(m_powerAt);
    }
    m_drive.advanceTo(now, settings());
}

void Inverter::powerCycle(Micros now, Micros duration)
{
    advanceTo(now);
    m_off = true;
    m_powerAt = now + duration;
}

std::uint16_t Inverter::parameter(unsigned group, unsigned index) const
{
    return m_parameters.at(parameterRegister(group, index));
}

DriveSettings Inverter::settings() const
{
    DriveSettings settings;
    settings.maximumHertz = parameter(driveGroup, MaximumFrequency) / 100.0;
    settings.minimumHertz = parameter(driveGroup, MinimumFrequency) / 100.0;
    settings.accelerationSeconds = parameter(driveGroup, AccelerationTime) / 10.0;
    settings.decelerationSeconds = parameter(driveGroup, DecelerationTime) / 10.0;
    settings.ratedVolts = parameter(driveGroup, RatedVoltage);
    settings.ratedAmperes = parameter(driveGroup, RatedCurrent) / 10.0;
    settings.ratedHertz = parameter(driveGroup, RatedFrequency) / 100.0;
    settings.loadPercent = parameter(driveGroup, LoadTorque);
    settings.communicationSeconds = parameter(driveGroup, CommunicationTime) / 10.0;
    return settings;
}

std::uint16_t Inverter::monitor(std::uint16_t address) const
{
    switch (address - firstMonitorRegister) {
    case 0:
        return scaled(m_drive.outputHertz(), 100.0);
    case 1:
        return scaled(m_drive.setHertz(), 100.0);
    case 2:
        return scaled(m_drive.amperes(), 10.0);
    case 3:
        return scaled(m_drive.volts(), 1.0);
    case 4:
        return scaled(m_drive.linkVolts(), 1.0);
    case 5:
        return scaled(m_drive.celsius(), 10.0);
    case 6:
        return scaled(m_drive.kilowatts(), 100.0);
    case 7:
        return scaled(m_drive.outputHertz(), 30.0); // four poles, no slip
    case 8:
        return m_drive.statusWord();
    case 9:
        return static_cast<std::uint16_t>(m_drive.fault());
    case 10:
        return static_cast<std::uint16_t>(m_drive.lastFault());
    case 11:
        return m_drive.faultCount();
    case 12:
        return seconds(m_drive.runTime());
    case 13:
        return seconds(m_drive.upTime());
    default:
        return 0;
    }
}

} // namespace dx4::sim
