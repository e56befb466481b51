// SPDX-License-Identifier: MIT
// A runtime set up by a configuration file, and set up anew while it runs.
#include "host/config_reload.h"
#include "host/config_runtime.h"

#include "runtime_fixture.h"

#include <QFile>
#include <QTemporaryDir>

using namespace dx4::host;
using std::chrono::milliseconds;

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
                                   "[[station]]\naddress = 2\n[[station]]\naddress = 9\n");

    const RuntimeSettings settings = runtimeSettings(config);

    EXPECT_EQ(settings.link.retryLimit, 5);
    ASSERT_EQ(settings.stops.size(), 2);
    EXPECT_EQ(settings.stops.at(1).station, 9);
    EXPECT_EQ(settings.stops.at(1).controlWord, 6);
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

TEST(ConfigRuntime, AReloadGoesThroughTheRuntime)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("host.toml")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("line.port = \"a\"\n[[station]]\naddress = 1\nregister = [ { at = \"SW\" } ]\n");
    file.close();
    RuntimeUnderTest under;
    under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    under.stations.registers[{ 1, 0x2000 }] = 0x21;
    Planner planner(privateCopy(), LinkSettings());
    ConfigReload reload(under.host.link(), planner, Config(),
                        [&under](const Plan &plan) { under.host.setPlan(plan); });
    under.steps(1);

    const bool prepared = reload.prepare(file.fileName(), nullptr);
    const bool applied = reload.apply();
    under.steps(1);

    EXPECT_TRUE(prepared);
    EXPECT_TRUE(applied);
    EXPECT_EQ(under.value(1, "SW", 0), 0x21);
}
