// SPDX-License-Identifier: MIT
// When the drive trips, what a trip does, and what a reset takes.
#include "drive_fixture.h"

#include <optional>

using namespace dx4::sim;

namespace {

// Mains whose DC link is at a limit, to the last bit.
constexpr double mainsOfUndervoltage = 380.0 / 1.4142;
constexpr double mainsOfOvervoltage = 800.0 / 1.4142;

struct FaultRow {
    const char *name;
    Fault fault;
    int code;
};

class Faults : public DriveModel, public ::testing::WithParamInterface<FaultRow> { };

} // namespace

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

TEST_F(DriveModel, LimitsThemselvesTripNothing)
{
    inverter.drive().setMainsVolts(mainsOfUndervoltage);
    pass(5);
    const int low = status();
    inverter.drive().setMainsVolts(mainsOfOvervoltage);
    pass(5);
    const int high = status();
    inverter.drive().setMainsVolts(400);
    heatTo(90);

    EXPECT_EQ(low, 0x0001);
    EXPECT_EQ(high, 0x0001);
    EXPECT_DOUBLE_EQ(inverter.drive().celsius(), 90.0);
    EXPECT_EQ(status(), 0x0081);
}

TEST_F(DriveModel, WarnsOfAHeatSinkAbove75Degrees)
{
    heatTo(75);
    const int atLimit = status();

    heatTo(75.1);

    EXPECT_EQ(atLimit, 0x0001);
    EXPECT_EQ(status(), 0x0081);
}

TEST_F(DriveModel, OverheatHoldsWhileTheHeatSinkIsAbove75Degrees)
{
    heatTo(75);
    inverter.drive().trip(Fault::Overheat);
    inverter.write(controlWordRegister, reset);
    const int atLimit = fault();
    inverter.write(controlWordRegister, stop);

    heatTo(75.1);
    inverter.drive().trip(Fault::Overheat);
    inverter.write(controlWordRegister, reset);

    EXPECT_EQ(atLimit, 0);
    EXPECT_EQ(fault(), 4);
}

TEST_F(DriveModel, OvervoltageHoldsUntilTheMainsAreAtTheLimit)
{
    inverter.drive().setMainsVolts(600);
    pass(5);
    inverter.write(controlWordRegister, reset);
    const int high = fault();
    inverter.write(controlWordRegister, stop);

    inverter.drive().setMainsVolts(mainsOfOvervoltage);
    inverter.write(controlWordRegister, reset);

    EXPECT_EQ(high, 2);
    EXPECT_EQ(fault(), 0);
}

TEST_F(DriveModel, UndervoltageHoldsUntilTheMainsAreAtTheLimit)
{
    inverter.drive().setMainsVolts(268);
    pass(5);
    const int low = fault();

    inverter.drive().setMainsVolts(mainsOfUndervoltage);
    inverter.write(controlWordRegister, reset);

    EXPECT_EQ(low, 3);
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

TEST_F(DriveModel, TripIsSeenAtOnceAlsoOutOfARamp)
{
    start(3000);
    pass(1000);

    inverter.drive().trip(Fault::Overheat);

    EXPECT_EQ(figures(), standing);
    EXPECT_EQ(status(), 0x0008);
}

TEST_F(DriveModel, FirstFaultStaysUntilItsReset)
{
    inverter.drive().trip(Fault::Overcurrent);

    inverter.drive().trip(Fault::Overheat);

    EXPECT_EQ(fault(), 1);
    EXPECT_EQ(monitor(10), 1);
    EXPECT_EQ(monitor(11), 1);
}

TEST_F(DriveModel, NoFaultIsNoTrip)
{
    start(3000);
    pass(4000);

    inverter.drive().trip(Fault::None);

    EXPECT_EQ(status(), 0x0013);
    EXPECT_EQ(monitor(11), 0);
}

TEST_P(Faults, HaveANameAndACode)
{
    ASSERT_EQ(faultByName(GetParam().name), GetParam().fault);

    inverter.drive().trip(GetParam().fault);

    EXPECT_EQ(fault(), GetParam().code);
    EXPECT_STREQ(faultName(GetParam().fault), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Rows, Faults,
                         ::testing::Values(FaultRow { "overcurrent", Fault::Overcurrent, 1 },
                                           FaultRow { "overvoltage", Fault::Overvoltage, 2 },
                                           FaultRow { "undervoltage", Fault::Undervoltage, 3 },
                                           FaultRow { "overheat", Fault::Overheat, 4 },
                                           FaultRow { "communication-loss",
                                                      Fault::CommunicationLoss, 5 }));

TEST(FaultNames, NoFaultIsNoneOfThem)
{
    EXPECT_EQ(faultByName("none"), std::nullopt);
    EXPECT_STREQ(faultName(Fault::None), "none");
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

TEST_F(DriveModel, RunBitThatStoodBeforeTheResetStartsNothing)
{
    start(3000);
    pass(1000);
    inverter.drive().trip(Fault::Overcurrent);
    inverter.write(controlWordRegister, reset | run);

    inverter.write(controlWordRegister, run);
    pass(1000);

    EXPECT_EQ(status(), 0x0001);
}

TEST_F(DriveModel, ResetBitThatStandsClearsNoLaterFault)
{
    inverter.write(controlWordRegister, reset);
    inverter.drive().trip(Fault::Overcurrent);

    inverter.write(controlWordRegister, reset);

    EXPECT_EQ(fault(), 1);
}

TEST_F(DriveModel, SilenceBeforeTheFirstRequestAfterAPowerCycleIsNoLoss)
{
    inverter.write(0xF808, 20); // 2 s
    inverter.noteRequest(now);

    inverter.powerCycle(now, std::chrono::milliseconds(500));
    pass(10000);

    EXPECT_EQ(fault(), 0);
}
