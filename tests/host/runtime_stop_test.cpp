// SPDX-License-Identifier: MIT
// A stop among what else a runtime does: writes, probes, late echoes and a user who is gone.
#include "runtime_fixture.h"

#include <algorithm>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr int controlWord = 0x1001;
constexpr int frequency = 0x1002;

RuntimeSettings stopping(const QVector<StopCommand> &stops)
{
    RuntimeSettings settings;
    settings.stops = stops;
    return settings;
}

/// Two drives that are polled and answered for a second.
class TwoDrives : public RuntimeUnderTest {
public:
    explicit TwoDrives(const RuntimeSettings &settings = stopping({ { 1, 0 }, { 2, 0 } }))
        : RuntimeUnderTest(settings)
    {
        host.setPlan(planOf({ { 1, QStringLiteral("SW") }, { 2, QStringLiteral("SW") } }));
        runFor(seconds(1));
    }

    void pollNobody() { host.setPlan(Plan()); }
};

} // namespace

TEST(RuntimeStop, RefusesWhatIsWrittenFromTheAlarmThatItIsNotConfirmed)
{
    TwoDrives plant;
    plant.stations.dead = { 2 };
    plant.host.onAlarm([&plant](const QString &) { plant.write(1, "FRE", 0, { 3000 }); });

    plant.host.stop(seconds(1));
    plant.runFor(milliseconds(200));

    EXPECT_EQ(plant.outcomes, Texts { "1000 refused" });
    EXPECT_EQ(plant.outcomeRecords.back().refusal, Refusal::Stopping);
}

TEST(RuntimeStop, ReachesAStationThatNobodyPollsOnceItIsBack)
{
    RuntimeUnderTest under(stopping({ { 1, 0 }, { 2, 4 } }));
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.stations.dead = { 2 };
    under.host.stop(seconds(1));
    under.runFor(seconds(5));
    under.stations.dead.clear();

    under.runFor(seconds(20));

    EXPECT_EQ((under.stations.registers[{ 2, controlWord }]), 4);
    EXPECT_EQ(under.alarms.back(), "all stops confirmed");
}

TEST(RuntimeStop, DropsWhatSomebodyElseOnTheLinkWroteBehindIt)
{
    TwoDrives plant(stopping({ { 1, 0 } }));
    plant.host.link().write(1, QStringLiteral("F"), 0, { 9 }, 7);
    plant.host.link().write(1, QStringLiteral("CW"), 0, { 3 }, 7); // the stop takes its place
    plant.host.link().write(1, QStringLiteral("FRE"), 0, { 3000 }, 7);

    plant.host.stop(seconds(1));
    plant.runFor(seconds(1));

    EXPECT_EQ((plant.stations.registers[{ 1, controlWord }]), 0);
    EXPECT_EQ(plant.stations.registers.count({ 1, frequency }), 0U);
}

TEST(RuntimeStop, ThatWasConfirmedKeepsNoDriveBehindAnEchoFromBeingLeftAlone)
{
    TwoDrives plant;
    plant.stations.echoes = true;
    plant.runFor(seconds(2));
    const StopReport report = plant.host.stop(seconds(2));
    plant.stations.dead = { 2 };

    plant.runFor(seconds(5));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_TRUE(plant.host.isLeftAlone(2));
}

TEST(RuntimeStop, IsDueTwentyMillisecondsAfterItsRepeatWasWithheld)
{
    int asked = 0;
    bool isArmed = false;
    RuntimeSettings settings = stopping({ { 1, 0 } });
    settings.isHurried = [&] { return isArmed && ++asked > 1; }; // once the step has begun
    TwoDrives plant(settings);
    plant.pollNobody();
    plant.stations.dead = { 1 };
    plant.host.stop(Duration { 0 });
    plant.stations.line.advance(seconds(1));
    const int before = plant.sent(1, 6);
    isArmed = true;

    plant.host.step();

    EXPECT_EQ(plant.sent(1, 6), before);
    EXPECT_EQ(plant.host.idleTime(), milliseconds(20));
}

TEST(RuntimeStop, GoesFirstToADriveThatMayHaveTakenAStartWhichWasNotConfirmed)
{
    TwoDrives plant;
    plant.stations.dead = { 2 };
    plant.write(2, "CW", 0, { 1 });
    plant.host.run([&] { return plant.host.pendingWrites() == 0; });
    plant.stations.dead.clear();
    plant.runFor(seconds(20));
    plant.host.setPlan(planOf({ { 1, QStringLiteral("SW") } })); // heard later than the other
    plant.runFor(seconds(1));
    const auto before = plant.stations.line.sent().size();

    plant.host.stop(seconds(1));

    EXPECT_EQ(plant.outcomes, Texts { "1000 timed out" });
    EXPECT_EQ(plant.stations.line.sent().at(before), framed("02 06 10 01 00 00"));
}

TEST(RuntimeStop, IsRepeatedAsSoonAsItsLateEchoShowsThatTheDriveLives)
{
    TwoDrives plant(stopping({ { 1, 0 } }));
    plant.pollNobody();
    plant.stations.slow[1] = milliseconds(50);

    plant.host.stop(Duration { 0 });
    plant.runFor(milliseconds(180));

    EXPECT_EQ(plant.sent(1, 6), 2);
    EXPECT_EQ(plant.alarms.back(), "all stops confirmed");
}

TEST(RuntimeStop, IsRepeatedAtOnceToADriveWhoseEchoCameAsAnotherWasStopped)
{
    TwoDrives plant;
    plant.host.run([&] { return plant.stations.line.sent().last().at(0) == 1; }); // the first then
    plant.stations.slow = { { 1, milliseconds(80) }, { 2, milliseconds(50) } };

    // It is waited for about 50 ms, and the pause behind the first round would take 200.
    const StopReport report = plant.host.stop(milliseconds(400));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(plant.sent(1, 6), 2);
    EXPECT_EQ(plant.sent(2, 6), 1);
}

TEST(RuntimeStop, IsNotBegunAnewByAUserWhoGoesAwayMeanwhile)
{
    RuntimeSettings settings = stopping({ { 1, 0 }, { 2, 0 } });
    settings.userPatience = seconds(3);
    TwoDrives plant(settings);
    plant.stations.dead = { 2 };
    plant.host.noteUser();
    plant.stations.line.advance(milliseconds(2500));

    plant.host.stop(seconds(2));

    EXPECT_EQ(plant.alarms.front(), "the user interface is silent: stopping");
    EXPECT_EQ(plant.sent(1, 6), 1);
}

TEST(RuntimeStop, WaitsInAShortBudgetForWhatALivingDriveTakes)
{
    RuntimeUnderTest under(stopping({ { 1, 0 } }));
    under.stations.slow[1] = milliseconds(40);
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.runFor(seconds(1));

    const StopReport report = under.host.stop(milliseconds(100));

    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(under.sent(1, 6), 1);
}

TEST(RuntimeStop, IsRepeatedWhereGapAndRequestFitIntoWhatIsLeftOfTheBudget)
{
    QVector<int> sent;
    for (const int budget : { 300, 309 }) {
        TwoDrives plant(stopping({ { 1, 0 } }));
        plant.stations.dead = { 1 };

        plant.host.stop(milliseconds(budget));

        sent.append(plant.sent(1, 6));
    }

    EXPECT_EQ(sent, (QVector<int> { 1, 2 }));
}
