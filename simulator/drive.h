// SPDX-License-Identifier: MIT
// The drive behind the registers: a motor that ramps, draws current, warms up and trips.
#pragma once

#include "simulator/clock.h"

#include <cstdint>
#include <optional>
#include <string>

namespace dx4::sim {

/// What register FU holds.
enum class Fault : std::uint16_t {
    None = 0,
    Overcurrent = 1,
    Overvoltage = 2,
    Undervoltage = 3,
    Overheat = 4,
    CommunicationLoss = 5,
};

/// The fault of a name such as "overheat" or "communication-loss"; none for another text.
std::optional<Fault> faultByName(const std::string &name);

/// "none", "overcurrent", "overvoltage", "undervoltage", "overheat", "communication-loss".
const char *faultName(Fault fault);

/// Bits of the control word CW.
enum ControlBit : std::uint16_t {
    RunCommand = 0x0001, ///< 1 run, 0 ramp down and stop
    ReverseCommand = 0x0002, ///< turn the other way round
    CoastCommand = 0x0004, ///< output off at once, whatever bit 0 says
    ResetCommand = 0x0080, ///< acknowledge a fault when it goes from 0 to 1
};

/// Bits of the status word SW.
enum StatusBit : std::uint16_t {
    ReadyStatus = 0x0001, ///< no fault, DC link charged
    RunningStatus = 0x0002, ///< output on
    ReverseStatus = 0x0004, ///< the field turns in reverse
    FaultStatus = 0x0008, ///< tripped; needs a reset
    AtFrequencyStatus = 0x0010, ///< running at the set frequency
    AcceleratingStatus = 0x0020, ///< away from zero
    DeceleratingStatus = 0x0040, ///< towards zero
    WarmStatus = 0x0080, ///< heat sink above 75 degrees Celsius
};

/// The figures of drive and motor that parameters hold.
struct DriveSettings {
    double maximumHertz = 50.0; ///< highest output frequency
    double minimumHertz = 0.0; ///< lowest set frequency while running
    double accelerationSeconds = 5.0; ///< from 0 to maximumHertz
    double decelerationSeconds = 5.0; ///< from maximumHertz to 0
    double ratedVolts = 400.0;
    double ratedAmperes = 10.0; ///< above 0
    double ratedHertz = 50.0; ///< above 0
    double loadPercent = 40.0; ///< torque of the load
    double communicationSeconds = 0.0; ///< longest time without a request; 0 never trips
};

/// One motor on one drive. Time goes in steps of fixed length, so that the same commands at the
/// same times give the same values, however often it is looked at.
class Drive {
public:
    /// Length of a step.
    static constexpr Micros step { 5000 };

    /// Lets time pass up to `now`; an earlier time is ignored.
    void advanceTo(Micros now, const DriveSettings &settings);

    /// Takes a control word; only changes of its bits count for run and reset.
    void control(std::uint16_t word);

    /// Takes a set frequency in hertz.
    void setFrequency(double hertz) { m_setHertz = hertz; }

    /// Notes that the master asked for this drive; starts the time of communication loss afresh.
    void noteRequest(Micros now);

    /// Trips, as the protection would. Fault::None is ignored.
    void trip(Fault fault);

    /// Mains voltage, ambient temperature in degrees Celsius: what the surroundings do to the
    /// drive.
    void setMainsVolts(double volts) { m_mainsVolts = volts; }
    void setAmbient(double celsius) { m_ambient = celsius; }

    /// Switches off and on: standing still, no command, no fault, no request seen. Counters of
    /// faults and the temperature stay.
    void restart(Micros now);

    std::uint16_t statusWord() const;
    Fault fault() const { return m_fault; }
    Fault lastFault() const { return m_lastFault; }
    std::uint16_t faultCount() const { return m_faultCount; }
    double setHertz() const { return m_setHertz; }
    double outputHertz() const; ///< without its direction
    bool reverse() const { return m_hertz < 0.0; }
    bool running() const { return m_output; }
    double amperes() const { return m_amperes; }
    double volts() const { return m_volts; }
    double linkVolts() const { return m_linkVolts; }
    double celsius() const { return m_celsius; }
    double kilowatts() const;
    Micros runTime() const { return m_runTime; }
    Micros upTime() const { return m_now - m_startedAt; }

private:
    enum class Ramp { Steady, Away, Towards }; ///< from zero hertz, to it

    void stepOnce(const DriveSettings &settings);
    double targetHertz(const DriveSettings &settings) const;
    void ramp(double target, const DriveSettings &settings);
    void followElectrics(double acceleration, const DriveSettings &settings);
    void followHeat(const DriveSettings &settings);
    void protect(const DriveSettings &settings);
    void switchOff();
    bool causeIsGone() const;

    Micros m_now { 0 };
    Micros m_startedAt { 0 };
    Micros m_runTime { 0 };
    std::optional<Micros> m_lastRequest;

    std::uint16_t m_control = 0;
    bool m_run = false; ///< run command in force
    bool m_output = false; ///< inverter gates on
    double m_setHertz = 0.0;
    double m_hertz = 0.0; ///< negative in reverse
    Ramp m_ramp = Ramp::Steady;

    double m_mainsVolts = 400.0;
    double m_ambient = 25.0;
    double m_amperes = 0.0;
    double m_volts = 0.0;
    double m_linkVolts = 565.7; ///< of 400 V, rectified
    double m_celsius = 25.0;

    Fault m_fault = Fault::None;
    Fault m_lastFault = Fault::None;
    std::uint16_t m_faultCount = 0;
};

} // namespace dx4::sim
