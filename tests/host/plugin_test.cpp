// SPDX-License-Identifier: MIT
// Finding, loading, copying and unloading the driver's file.
#include "host/plugin.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using dx4::host::DriverFile;
using dx4::host::locateDriver;
using dx4::host::Plugin;

namespace {

const QString driverPath = QStringLiteral(KORVANE_PLUGIN_FILE);

/// Sets KORVANE_DRIVER for one test.
class DriverVariable {
public:
    explicit DriverVariable(const QString &path) { qputenv("KORVANE_DRIVER", path.toLocal8Bit()); }
    ~DriverVariable() { qunsetenv("KORVANE_DRIVER"); }
    DriverVariable(const DriverVariable &) = delete;
    DriverVariable &operator=(const DriverVariable &) = delete;
};

} // namespace

TEST(Plugin, ResolvesEveryName)
{
    QString error;

    const auto plugin = Plugin::load(driverPath, Plugin::Instance::Shared, &error);

    ASSERT_TRUE(plugin) << error.toStdString();
    EXPECT_EQ(error, QString());
    QString page;
    plugin->api().getDriverPropertyPage(page);
    EXPECT_EQ(page, QStringLiteral("0_0"));
    EXPECT_NE(plugin->api().state, nullptr);
}

TEST(Plugin, ListsAllMissingNamesAtOnce)
{
    const QString file = QStringLiteral(KORVANE_INCOMPLETE_PLUGIN_FILE);
    QString error;

    const auto plugin = Plugin::load(file, Plugin::Instance::Shared, &error);

    EXPECT_FALSE(plugin);
    EXPECT_EQ(error.toStdString(),
              file.toStdString()
                  + " is not this driver; it lacks: intf_multiCopy, intf_getData, driver");
}

TEST(Plugin, SaysWhichFileCannotBeLoaded)
{
    QString error;

    const auto plugin =
        Plugin::load(QStringLiteral("/no/such/driver.so"), Plugin::Instance::Shared, &error);

    EXPECT_FALSE(plugin);
    EXPECT_TRUE(error.startsWith(QStringLiteral("cannot load the driver: /no/such/driver.so:")))
        << error.toStdString();
}

TEST(Plugin, SaysWhichFileCannotBeCopied)
{
    QString error;

    const auto plugin =
        Plugin::load(QStringLiteral("/no/such/driver.so"), Plugin::Instance::PrivateCopy, &error);

    EXPECT_FALSE(plugin);
    EXPECT_TRUE(error.startsWith(QStringLiteral("cannot copy the driver /no/such/driver.so:")))
        << error.toStdString();
}

TEST(Plugin, LoadedTwiceSharesOneState)
{
    const auto first = Plugin::load(driverPath);
    const auto second = Plugin::load(driverPath);

    EXPECT_EQ(first->api().state, second->api().state);
}

TEST(Plugin, APrivateCopyHasAStateOfItsOwn)
{
    const auto shared = Plugin::load(driverPath);
    const auto first = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);
    const auto second = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);

    first->api().state->retryLimit = 7;

    EXPECT_EQ(first->api().state->retryLimit, 7);
    EXPECT_EQ(second->api().state->retryLimit, 0);
    EXPECT_EQ(shared->api().state->retryLimit, 0);
}

TEST(Plugin, APrivateCopyLeavesNoFileBehind)
{
    const QStringList pattern { QStringLiteral("korvane_dx4-*") };
    const auto before = QDir::temp().entryList(pattern).size();

    const auto copy = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);

    ASSERT_TRUE(copy);
    EXPECT_EQ(QDir::temp().entryList(pattern).size(), before);
}

TEST(Plugin, ForgetsItsStateWhenUnloaded)
{
    auto plugin = Plugin::load(driverPath);
    plugin->api().state->retryLimit = 7;

    plugin.reset();
    plugin = Plugin::load(driverPath);

    EXPECT_EQ(plugin->api().state->retryLimit, 0);
}

TEST(LocateDriver, TakesTheExplicitPathBeforeTheVariable)
{
    const DriverVariable variable(QStringLiteral("/no/such/driver.so"));

    const DriverFile found = locateDriver(driverPath);

    EXPECT_EQ(found.path, driverPath);
}

TEST(LocateDriver, TakesTheVariableWhenNothingIsExplicit)
{
    const DriverVariable variable(driverPath);

    const DriverFile found = locateDriver();

    EXPECT_EQ(found.path, driverPath);
}

TEST(LocateDriver, LooksNowhereElseWhenAPathIsNamed)
{
    const DriverFile found = locateDriver(QStringLiteral("/no/such/driver.so"));

    EXPECT_EQ(found.path, QString());
    EXPECT_EQ(found.tried, QStringList { QStringLiteral("/no/such/driver.so") });
}
