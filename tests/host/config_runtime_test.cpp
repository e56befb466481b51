// SPDX-License-Identifier: MIT
// A runtime set up by a configuration file, and set up anew while it runs.
#include "host/runtime/config_reload.h"
#include "host/runtime/config_runtime.h"

#include "runtime_fixture.h"

#include <QFile>
#include <QTemporaryDir>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

Config configOf(const char *text)
{
    QVector<ConfigError> errors;
    return *parseConfig(text, &errors);
}

} // namespace

TEST(ConfigRuntime, EveryStationIsStoppedAsTheFileSays)
{
    const Config config = configOf("line.port = \"a\"\nlink.tries = 5\nstop.control_word = 6\n"
                                   "stop.confirm_ms = 700\nstop.broadcast = true\n"
                                   "[[station]]\naddress = 2\n[[station]]\naddress = 9\n");

    const RuntimeSettings settings = runtimeSettings(config);

    EXPECT_EQ(settings.link.retryLimit, 5);
    ASSERT_EQ(settings.stops.size(), 2);
    EXPECT_EQ(settings.stops.at(1).station, 9);
    EXPECT_EQ(settings.stops.at(1).controlWord, 6);
    EXPECT_TRUE(settings.stopBroadcast);
    EXPECT_EQ(settings.stopBudget, milliseconds(700));
}

TEST(ConfigRuntime, OnlyStationsOfTheFileAreWrittenTo)
{
    RuntimeUnderTest under(
        runtimeSettings(configOf("line.port = \"a\"\n[[station]]\naddress = 2\n")));
    under.stations.line.open(nullptr);

    under.write(1, "FRE", 0, { 5 });
    under.write(2, "FRE", 0, { 5 });
    under.steps(1);

    EXPECT_EQ(under.outcomes, (Texts { "1000 refused", "1001 confirmed" }));
    EXPECT_EQ(under.outcomeRecords.at(0).refusal, Refusal::NotConfigured);
    EXPECT_EQ(under.outcomeRecords.at(0).text.toStdString(),
              "station 1, FRE 0 (0x1002): the configuration does not name the station");
    EXPECT_EQ(under.sent(1, 6), 0);
}

TEST(ConfigRuntime, WithoutAControlWordNothingIsStopped)
{
    const RuntimeSettings settings =
        runtimeSettings(configOf("line.port = \"a\"\n[[station]]\naddress = 2\n"));

    EXPECT_TRUE(settings.stops.isEmpty());
}

TEST(ConfigRuntime, AStationsExtraGapIsKeptBeforeItsRequests)
{
    RuntimeUnderTest under;
    under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    setExtraGaps(under.host.guard(),
                 configOf("line.port = \"a\"\n[[station]]\naddress = 1\n"
                          "extra_gap_ms = 200\n"));
    under.steps(1);
    const Duration before = under.stations.line.now();

    under.steps(1);

    EXPECT_GE(under.stations.line.now() - before, milliseconds(200));
}

namespace {

/// A runtime that polls D 0 of station 1 and has asked for it once, then has its file replaced.
class ReloadedRuntime : public ::testing::Test {
protected:
    ReloadedRuntime()
    {
        under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
        under.steps(1);
    }

    bool replaceBy(const char *text)
    {
        QFile file(folder.filePath(QStringLiteral("host.toml")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return reload.prepare(file.fileName(), nullptr) && reload.apply();
    }

    const QTemporaryDir folder;
    RuntimeUnderTest under;
    Planner planner { privateCopy(), LinkSettings() };
    ConfigReload reload { under.host, planner, Config() };
};

} // namespace

TEST_F(ReloadedRuntime, PollsWhatTheFileSays)
{
    under.stations.registers[{ 1, 0x2000 }] = 0x21;

    const bool applied = replaceBy("line.port = \"a\"\n[[station]]\naddress = 1\n"
                                   "register = [ { at = \"SW\" } ]\n");
    under.steps(1);

    EXPECT_TRUE(applied);
    EXPECT_EQ(under.value(1, "SW", 0), 0x21);
}

TEST_F(ReloadedRuntime, StopsTheStationsOfTheFile)
{
    const bool applied = replaceBy("line.port = \"a\"\nstop.control_word = 6\n"
                                   "stop.confirm_ms = 700\n[[station]]\naddress = 2\n");

    const StopReport report = under.host.stop(reload.current().stop.confirmWithin);

    EXPECT_TRUE(applied);
    EXPECT_EQ(reload.current().stop.confirmWithin, milliseconds(700));
    EXPECT_TRUE(report.unconfirmed.isEmpty());
    EXPECT_EQ(under.sent(1, 6), 0);
    EXPECT_EQ(under.stations.registers.at({ 2, 0x1001 }), 6);
}

TEST_F(ReloadedRuntime, WritesToTheStationsOfTheFile)
{
    const bool applied = replaceBy("line.port = \"a\"\n[[station]]\naddress = 2\n");

    under.write(1, "FRE", 0, { 5 });
    under.write(2, "FRE", 0, { 5 });
    under.steps(1);

    EXPECT_TRUE(applied);
    EXPECT_EQ(under.outcomes, (Texts { "1000 refused", "1001 confirmed" }));
}

TEST_F(ReloadedRuntime, RepeatsTheStopOfAStationThatTheFileNamesNoMore)
{
    replaceBy("line.port = \"a\"\nstop.control_word = 6\n[[station]]\naddress = 1\n");
    under.stations.dead = { 1 };
    under.host.stop(milliseconds(300));

    replaceBy("line.port = \"a\"\nstop.control_word = 6\n[[station]]\naddress = 2\n");
    under.stations.dead = {};
    under.runFor(seconds(15));

    EXPECT_EQ(under.stations.registers.at({ 1, 0x1001 }), 6);
}

TEST_F(ReloadedRuntime, BroadcastsAsTheFileSays)
{
    const bool applied = replaceBy("line.port = \"a\"\n[stop]\ncontrol_word = 6\n"
                                   "broadcast = true\n[[station]]\naddress = 2\n");

    under.host.stop(reload.current().stop.confirmWithin);

    EXPECT_TRUE(applied);
    EXPECT_EQ(under.sent(0, 6), 1);
}

TEST_F(ReloadedRuntime, StopsForAUserWhoIsGoneWithinTheTimeOfTheFile)
{
    RuntimeSettings settings;
    settings.userPatience = seconds(2);
    RuntimeUnderTest watched(settings);
    ConfigReload followed(watched.host, planner, Config());
    watched.stations.dead = { 2 };
    QFile file(folder.filePath(QStringLiteral("host.toml")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("line.port = \"a\"\n[stop]\ncontrol_word = 6\nconfirm_ms = 5000\n"
               "[[station]]\naddress = 1\nregister = [ { at = \"D 0\" } ]\n"
               "[[station]]\naddress = 2\n");
    file.close();
    followed.prepare(file.fileName(), nullptr);

    const bool applied = followed.apply();
    watched.runFor(milliseconds(2500)); // the stop begins after two seconds
    const int readsBefore = watched.sent(1, 3);
    watched.runFor(seconds(4)); // and would have ended after two more, had the file no say in it

    EXPECT_TRUE(applied);
    EXPECT_EQ(watched.stations.registers.at({ 1, 0x1001 }), 6);
    EXPECT_EQ(watched.sent(1, 3), readsBefore) << "nothing but stops until the time is over";
    watched.write(1, "FRE", 0, { 5 });
    watched.runFor(milliseconds(1));
    EXPECT_EQ(watched.outcomes, Texts { "1000 refused" }) << "the rounds go on";
}

TEST_F(ReloadedRuntime, KeepsTheExtraGapsOfTheFile)
{
    const bool applied = replaceBy("line.port = \"a\"\n[[station]]\naddress = 1\n"
                                   "extra_gap_ms = 200\nregister = [ { at = \"D 0\" } ]\n");
    const Duration before = under.stations.line.now();

    under.steps(1);

    EXPECT_TRUE(applied);
    EXPECT_GE(under.stations.line.now() - before, milliseconds(200));
}
