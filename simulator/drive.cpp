// SPDX-License-Identifier: MIT
// The drive behind the registers: a motor that ramps, draws current, warms up and trips.
#include "simulator/drive.h"

#include "common/state_names.h"

#include <algorithm>
#include <cmath>

namespace dx4::sim {

namespace {

constexpr double stepSeconds = 0.005;
constexpr double rectified = 1.4142; // DC link volts per volt of mains
constexpr double linkSagVolts = 15.0; // at rated current
constexpr double undervoltageVolts = 380.0; // DC link
constexpr double overvoltageVolts = 800.0; // DC link
constexpr double overcurrentFactor = 2.0; // of rated current
constexpr double overheatCelsius = 90.0;
constexpr double warmCelsius = 75.0;
constexpr double heatRise = 35.0; // kelvin above ambient at rated current
constexpr double heatSeconds = 60.0; // time constant of the heat sink
constexpr double magnetising = 0.3; // part of rated current that flows without load
constexpr double inertia = 0.010; // part of rated current per hertz per second
constexpr double regeneration = 1.6; // DC link volts per hertz per second of braking
constexpr double powerFactor = 0.8;
constexpr double nearlyThere = 0.005; // hertz; half of what a register resolves

static_assert(Drive::step.count() == 5000, "stepSeconds is the same length");

double approach(double value, double target, double step)
{
    return value < target ? std::min(value + step, target) : std::max(value - step, target);
}

/// Hertz that one step may change, for a ramp of `seconds` over the whole range; no ramp is shorter
/// than a step.
double rampStep(double seconds, const DriveSettings &settings)
{
    return settings.maximumHertz / std::max(seconds, stepSeconds) * stepSeconds;
}

} // namespace

std::optional<Fault> faultByName(const std::string &name)
{
    for (std::size_t i = 1; i < common::faultNames.size(); ++i) {
        if (name == common::faultNames[i])
            return static_cast<Fault>(i);
    }
    return std::nullopt;
}

const char *faultName(Fault fault)
{
    return common::faultNames[static_cast<std::size_t>(fault)];
}

void Drive::advanceTo(Micros now, const DriveSettings &settings)
{
    while (m_now + step <= now) {
        m_now += step;
        stepOnce(settings);
    }
}

void Drive::stepOnce(const DriveSettings &settings)
{
    const double before = std::fabs(m_hertz);
    ramp(targetHertz(settings), settings);
    followElectrics((std::fabs(m_hertz) - before) / stepSeconds, settings);
    followHeat(settings);
    protect(settings);
    if (m_output)
        m_runTime += step;
}

double Drive::targetHertz(const DriveSettings &settings) const
{
    if (!m_run)
        return 0.0;
    const double top = settings.maximumHertz;
    const double hertz = std::clamp(m_setHertz, std::min(settings.minimumHertz, top), top);
    return (m_control & ReverseCommand) ? -hertz : hertz;
}

void Drive::ramp(double target, const DriveSettings &settings)
{
    m_ramp = Ramp::Steady;
    if (m_run)
        m_output = true;
    // A change of direction brakes to zero first and accelerates from there.
    const bool turning = m_hertz * target < 0.0;
    const double goal = turning ? 0.0 : target;
    const bool away = std::fabs(goal) > std::fabs(m_hertz);
    const double seconds = away ? settings.accelerationSeconds : settings.decelerationSeconds;
    const double from = m_hertz;
    m_hertz = approach(m_hertz, goal, rampStep(seconds, settings));
    if (m_hertz < from || m_hertz > from)
        m_ramp = away ? Ramp::Away : Ramp::Towards;
    if (!m_run && std::fabs(m_hertz) < nearlyThere)
        m_output = false;
}

void Drive::followElectrics(double acceleration, const DriveSettings &settings)
{
    if (!m_output)
        return switchOff();
    const double load = settings.loadPercent / 100.0;
    const double torque = load + inertia * acceleration;
    const double part = std::sqrt(magnetising * magnetising + torque * torque);
    m_amperes = settings.ratedAmperes * part;
    m_linkVolts = m_mainsVolts * rectified - linkSagVolts * std::max(torque, 0.0)
        + regeneration * std::max(-acceleration, 0.0);
    const double share = std::fabs(m_hertz) / settings.ratedHertz;
    m_volts = std::min(settings.ratedVolts * std::min(share, 1.0), m_linkVolts / rectified);
}

void Drive::followHeat(const DriveSettings &settings)
{
    const double part = m_amperes / settings.ratedAmperes;
    const double goal = m_ambient + heatRise * part * part;
    m_celsius += (goal - m_celsius) * stepSeconds / heatSeconds;
}

void Drive::protect(const DriveSettings &settings)
{
    if (m_amperes > settings.ratedAmperes * overcurrentFactor)
        trip(Fault::Overcurrent);
    else if (m_linkVolts > overvoltageVolts)
        trip(Fault::Overvoltage);
    else if (m_linkVolts < undervoltageVolts)
        trip(Fault::Undervoltage);
    else if (m_celsius > overheatCelsius)
        trip(Fault::Overheat);
    else if (settings.communicationSeconds > 0.0 && m_lastRequest
             && m_now - *m_lastRequest
                 >= Micros(static_cast<Micros::rep>(settings.communicationSeconds * 1e6)))
        trip(Fault::CommunicationLoss);
}

void Drive::trip(Fault fault)
{
    if (fault == Fault::None || m_fault != Fault::None)
        return;
    m_fault = fault;
    m_lastFault = fault;
    ++m_faultCount;
    switchOff();
}

void Drive::switchOff()
{
    m_run = false;
    m_output = false;
    m_hertz = 0.0;
    m_ramp = Ramp::Steady;
    m_amperes = 0.0;
    m_volts = 0.0;
    m_linkVolts = m_mainsVolts * rectified;
}

bool Drive::causeIsGone() const
{
    switch (m_fault) {
    case Fault::None:
    case Fault::Overcurrent:
    case Fault::CommunicationLoss:
        break;
    case Fault::Overvoltage:
        return m_mainsVolts * rectified <= overvoltageVolts;
    case Fault::Undervoltage:
        return m_mainsVolts * rectified >= undervoltageVolts;
    case Fault::Overheat:
        return m_celsius <= warmCelsius;
    }
    return true;
}

void Drive::control(std::uint16_t word)
{
    const unsigned rising = word & ~unsigned { m_control };
    m_control = word;
    if (m_fault != Fault::None) {
        // A run bit that comes along with the reset, or stood before it, starts nothing: the
        // operator has to ask again.
        if ((rising & ResetCommand) && causeIsGone())
            m_fault = Fault::None;
        return;
    }
    if (word & CoastCommand)
        return switchOff();
    if (!(word & RunCommand))
        m_run = false;
    else if (rising & RunCommand)
        m_run = true;
}

void Drive::noteRequest(Micros now)
{
    m_lastRequest = now;
}

void Drive::restart(Micros now)
{
    m_now = std::max(m_now, now);
    m_startedAt = m_now;
    m_lastRequest.reset();
    m_control = 0;
    m_setHertz = 0.0;
    m_fault = Fault::None;
    switchOff();
}

double Drive::outputHertz() const
{
    return std::fabs(m_hertz);
}

double Drive::kilowatts() const
{
    return std::sqrt(3.0) * m_volts * m_amperes * powerFactor / 1000.0;
}

std::uint16_t Drive::statusWord() const
{
    const bool faulty = m_fault != Fault::None;
    const bool charged = m_linkVolts >= undervoltageVolts;
    unsigned word = 0;
    const auto mark = [&word](StatusBit bit, bool set) { word |= set ? unsigned { bit } : 0U; };
    mark(ReadyStatus, !faulty && charged);
    mark(RunningStatus, m_output);
    mark(ReverseStatus, m_hertz < 0.0);
    mark(FaultStatus, faulty);
    mark(AtFrequencyStatus, m_run && m_output && m_ramp == Ramp::Steady);
    mark(AcceleratingStatus, m_ramp == Ramp::Away);
    mark(DeceleratingStatus, m_ramp == Ramp::Towards);
    mark(WarmStatus, m_celsius > warmCelsius);
    return static_cast<std::uint16_t>(word);
}

} // namespace dx4::sim
