// SPDX-License-Identifier: MIT
// The drive model: ramps, figures, run time and power cycles, all in virtual time.
#include "drive_fixture.h"

using namespace dx4::sim;

namespace {

struct FigureRow {
    const char *name;
    std::uint16_t parameter;
    std::uint16_t value;
    std::uint16_t setFrequency; // 0.01 Hz
    unsigned monitor;
    int expected;
};

class FiguresOfTheMotor : public DriveModel, public ::testing::WithParamInterface<FigureRow> { };

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

    EXPECT_EQ(status(), 0x0013); // ready, running, at frequency
    EXPECT_EQ(monitor(7), 900); // rpm
    // 30 Hz, 5 A, 240 V, a link of 400 V that sags by 6 V, 1.66 kW at a power factor of 0.8
    EXPECT_EQ(figures(), (std::vector<int> { 3000, 50, 240, 560, 166 }));
}

TEST_F(DriveModel, RampOfNoTimeTakesOneStep)
{
    inverter.write(0xF802, 0);

    start(10);
    pass(5);

    EXPECT_EQ(monitor(0), 10);
    EXPECT_EQ(fault(), 0);
}

TEST_F(DriveModel, MotorGetsNoMoreThanTheMainsGive)
{
    inverter.write(0xF804, 480); // V at 50 Hz

    start(5000);
    pass(6000);

    EXPECT_EQ(monitor(3), 396); // 400 V less the sag of the link
}

TEST_P(FiguresOfTheMotor, AreItsParameters)
{
    inverter.write(GetParam().parameter, GetParam().value);

    start(GetParam().setFrequency);
    pass(20000);

    EXPECT_EQ(monitor(GetParam().monitor), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FiguresOfTheMotor,
    ::testing::Values(FigureRow { "HighestFrequency", 0xF800, 6000, 7000, 0, 6000 },
                      FigureRow { "LowestFrequency", 0xF801, 1000, 500, 0, 1000 },
                      FigureRow { "LowestAboveHighest", 0xF801, 6000, 500, 0, 5000 },
                      FigureRow { "RatedVoltage", 0xF804, 230, 5000, 3, 230 },
                      FigureRow { "RatedCurrent", 0xF805, 200, 3000, 2, 100 },
                      FigureRow { "RatedFrequency", 0xF806, 10000, 5000, 3, 200 }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(DriveModel, CountsTheTimeOfItsOutputAndOfItsPower)
{
    start(1000);
    pass(4500);
    inverter.write(controlWordRegister, stop);

    pass(10000);

    EXPECT_EQ(monitor(12), 5); // s; another second from 10 Hz to a stop
    EXPECT_EQ(monitor(13), 14);
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

    EXPECT_EQ(figures(), standing);
    EXPECT_EQ(status(), 0x0001);
}

TEST_F(DriveModel, EndOfACoastStartsNothing)
{
    start(3000);
    pass(1000);
    inverter.write(controlWordRegister, 0x0005);

    inverter.write(controlWordRegister, run);
    pass(1000);

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

TEST_F(DriveModel, StandsStillTheMomentThePowerIsBack)
{
    start(3000);
    pass(1000);

    inverter.powerCycle(now, std::chrono::milliseconds(500));
    pass(500);

    EXPECT_TRUE(inverter.powered());
    EXPECT_EQ(figures(), standing);
    EXPECT_EQ(status(), 0x0001);
}

TEST_F(DriveModel, PowerCycleEndsAFaultAndAsksForNoNewRunBit)
{
    start(3000);
    pass(1000);
    inverter.drive().trip(Fault::Overcurrent);
    inverter.powerCycle(now, std::chrono::milliseconds(500));
    pass(500);
    const int after = fault();

    start(3000);
    pass(1000);

    EXPECT_EQ(after, 0);
    EXPECT_EQ(monitor(0), 1000);
    EXPECT_EQ(monitor(11), 1); // the count of faults stays
}

TEST_F(DriveModel, TimeBeforeThePowerCutCountsAndTimeWithoutPowerDoesNot)
{
    start(3000);

    inverter.powerCycle(std::chrono::seconds(10), std::chrono::seconds(5));
    pass(18000);

    EXPECT_EQ(monitor(12), 10); // s with the output on
    EXPECT_EQ(monitor(13), 3); // s since the power is back
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
