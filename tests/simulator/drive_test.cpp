// SPDX-License-Identifier: MIT
// The drive model: ramps, currents, heat, trips and resets, all in virtual time.
#include "simulator/inverter.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

constexpr std::uint16_t run = 0x0001;
constexpr std::uint16_t runReverse = 0x0003;
constexpr std::uint16_t stop = 0x0000;
constexpr std::uint16_t reset = 0x0080;

class DriveModel : public ::testing::Test {
protected:
    void pass(int milliseconds)
    {
        now += std::chrono::milliseconds(milliseconds);
        inverter.advanceTo(now);
    }

    void start(std::uint16_t hundredthHertz, std::uint16_t control = run)
    {
        inverter.write(frequencyRegister, hundredthHertz);
        inverter.write(controlWordRegister, control);
    }

    int monitor(unsigned index) const
    {
        return inverter.read(static_cast<std::uint16_t>(firstMonitorRegister + index));
    }

    int status() const { return inverter.read(statusWordRegister); }
    int fault() const { return inverter.read(faultCodeRegister); }

    Micros now { 0 };
    Inverter inverter;
};

} // namespace

TEST_F(DriveModel, StandsReadyAfterPowerOn)
{
    pass(100);

    EXPECT_EQ(status(), 0x0001);
    EXPECT_EQ(fault(), 0);
    EXPECT_EQ(monitor(0), 0);
    EXPECT_EQ(monitor(4), 566); // DC link of 400 V
}

TEST_F(DriveModel, AcceleratesAsItsParameterSays)
{
    inverter.write(0xF802, 100); // 10 s to 50 Hz

    start(3000);
    pass(2000);

    EXPECT_EQ(monitor(0), 1000);
    EXPECT_EQ(status(), 0x0023); // ready, running, accelerating
}

TEST_F(DriveModel, StaysAtTheSetFrequency)
{
    start(3000);

    pass(3500);

    EXPECT_EQ(monitor(0), 3000);
    EXPECT_EQ(status(), 0x0013); // ready, running, at frequency
    EXPECT_EQ(monitor(7), 900); // rpm
    EXPECT_EQ(monitor(3), 240); // V
}

TEST_F(DriveModel, NeverLeavesTheHighestFrequency)
{
    start(40000);

    pass(20000);

    EXPECT_EQ(monitor(1), 40000);
    EXPECT_EQ(monitor(0), 5000);
}

TEST_F(DriveModel, DeceleratesToAStopAndSwitchesOff)
{
    start(5000);
    pass(6000);
    inverter.write(0xF803, 20); // 2 s from 50 Hz

    inverter.write(controlWordRegister, stop);
    pass(1000);
    const int halfWay = monitor(0);
    const int slowing = status();
    pass(1100);

    EXPECT_EQ(halfWay, 2500);
    EXPECT_EQ(slowing, 0x0043); // ready, running, decelerating
    EXPECT_EQ(monitor(0), 0);
    EXPECT_EQ(status(), 0x0001);
    EXPECT_EQ(monitor(2), 0);
}

TEST_F(DriveModel, ReversesThroughZero)
{
    start(1000);
    pass(2000);

    inverter.write(controlWordRegister, runReverse);
    pass(500);
    const int before = status();
    pass(1000);
    const int after = status();
    pass(2000);

    EXPECT_EQ(before, 0x0043); // decelerating, still forward
    EXPECT_EQ(after, 0x0027); // accelerating, reverse
    EXPECT_EQ(monitor(0), 1000);
    EXPECT_EQ(status(), 0x0017);
}

TEST_F(DriveModel, CoastSwitchesTheOutputOffAtOnce)
{
    start(3000);
    pass(4000);

    inverter.write(controlWordRegister, 0x0005);
    pass(5);

    EXPECT_EQ(monitor(0), 0);
    EXPECT_EQ(status(), 0x0001);
}

TEST_F(DriveModel, CurrentFollowsTheLoad)
{
    start(3000);
    pass(4000);
    const int atForty = monitor(2);

    inverter.write(0xF807, 100); // percent
    pass(10);

    EXPECT_EQ(atForty, 50); // 0.3 magnetising and 0.4 load of 10 A
    EXPECT_EQ(monitor(2), 104);
}

TEST_F(DriveModel, TemperatureFollowsTheCurrent)
{
    start(3000);
    pass(4000);
    const int cool = monitor(5);

    inverter.write(0xF807, 150);
    pass(600000);

    EXPECT_LT(cool, 260);
    EXPECT_EQ(status() & 0x0008, 0x0008);
    EXPECT_EQ(fault(), 4);
}

TEST_F(DriveModel, TooFastARampTripsByCurrent)
{
    inverter.write(0xF802, 2); // 0.2 s to 50 Hz

    start(5000);
    pass(100);

    EXPECT_EQ(fault(), 1);
    EXPECT_EQ(status(), 0x0008); // never ready while tripped
}

TEST_F(DriveModel, TooFastAStopTripsByVoltage)
{
    start(5000);
    pass(6000);
    inverter.write(0xF803, 3); // 0.3 s from 50 Hz

    inverter.write(controlWordRegister, stop);
    pass(50);

    EXPECT_EQ(fault(), 2);
}

TEST_F(DriveModel, LowMainsTripsByUndervoltageAndHoldsUntilItIsBack)
{
    inverter.drive().setMainsVolts(230);
    pass(10);
    const int tripped = fault();

    inverter.write(controlWordRegister, reset);
    const int stillTripped = fault();
    inverter.write(controlWordRegister, stop);
    inverter.drive().setMainsVolts(400);
    inverter.write(controlWordRegister, reset);

    EXPECT_EQ(tripped, 3);
    EXPECT_EQ(stillTripped, 3);
    EXPECT_EQ(fault(), 0);
}

TEST_F(DriveModel, SilenceOfTheMasterTripsAfterTheSetTime)
{
    inverter.write(0xF808, 20); // 2 s
    inverter.noteRequest(now);

    pass(1995);
    const int before = fault();
    pass(5);

    EXPECT_EQ(before, 0);
    EXPECT_EQ(fault(), 5);
}

TEST_F(DriveModel, SilenceBeforeTheFirstRequestIsNoLoss)
{
    inverter.write(0xF808, 1);

    pass(10000);

    EXPECT_EQ(fault(), 0);
}

TEST_F(DriveModel, TripShowsEverywhereAndStopsTheMotor)
{
    start(3000);
    pass(4000);

    inverter.drive().trip(Fault::Overheat);

    EXPECT_EQ(fault(), 4);
    EXPECT_EQ(status(), 0x0008);
    EXPECT_EQ(monitor(0), 0);
    EXPECT_EQ(monitor(9), 4);
    EXPECT_EQ(monitor(10), 4);
    EXPECT_EQ(monitor(11), 1);
}

TEST_F(DriveModel, RunCommandIsIgnoredWhileTripped)
{
    inverter.drive().trip(Fault::Overcurrent);

    start(3000);
    pass(1000);

    EXPECT_EQ(monitor(0), 0);
    EXPECT_EQ(fault(), 1);
}

TEST_F(DriveModel, ResetClearsTheFaultButStartsNothing)
{
    start(3000);
    pass(1000);
    inverter.drive().trip(Fault::Overcurrent);

    inverter.write(controlWordRegister, reset | run);
    pass(1000);
    const int afterReset = status();
    inverter.write(controlWordRegister, stop);
    inverter.write(controlWordRegister, run);
    pass(1000);

    EXPECT_EQ(fault(), 0);
    EXPECT_EQ(afterReset, 0x0001);
    EXPECT_EQ(monitor(0), 1000);
    EXPECT_EQ(monitor(10), 1); // the last fault stays on record
}

TEST_F(DriveModel, ResetBitThatStandsClearsNoLaterFault)
{
    inverter.write(controlWordRegister, reset);
    inverter.drive().trip(Fault::Overcurrent);

    inverter.write(controlWordRegister, reset);

    EXPECT_EQ(fault(), 1);
}

TEST_F(DriveModel, PowerCycleKeepsParametersOnly)
{
    inverter.write(0xF003, 77);
    start(3000);
    pass(4000);

    inverter.powerCycle(now, std::chrono::milliseconds(500));
    pass(499);
    const bool whileOff = inverter.powered();
    pass(101);

    EXPECT_FALSE(whileOff);
    EXPECT_TRUE(inverter.powered());
    EXPECT_EQ(inverter.read(0xF003), 77);
    EXPECT_EQ(monitor(1), 0);
    EXPECT_EQ(status(), 0x0001);
}

TEST_F(DriveModel, ManyLooksGiveTheSameAsOne)
{
    Inverter looked;
    looked.write(frequencyRegister, 3333);
    looked.write(controlWordRegister, run);
    start(3333);

    for (int i = 1; i <= 1234; ++i)
        looked.advanceTo(std::chrono::milliseconds(i));
    pass(1234);

    EXPECT_EQ(looked.read(0xD000), inverter.read(0xD000));
    EXPECT_EQ(inverter.read(0xD000), 1230);
}

TEST_F(DriveModel, HeldRegisterShowsWhatItIsToldTo)
{
    inverter.hold(0xD000, 0xBEEF);
    const int held = inverter.read(0xD000);

    inverter.release(0xD000);

    EXPECT_EQ(held, 0xBEEF);
    EXPECT_EQ(inverter.read(0xD000), 0);
}
