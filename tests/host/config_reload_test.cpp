// SPDX-License-Identifier: MIT
// Another configuration while the link runs: nothing in progress is lost.
#include "host/exchange/cycle.h"
#include "host/line/memory_line.h"
#include "host/runtime/config_reload.h"

#include "host_bytes.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4::host;

namespace {

const char *const oneMonitor = "line.port = \"a\"\n[[station]]\naddress = 1\n"
                               "register = [ { at = \"D 0\" } ]\n";
const char *const status = "line.port = \"a\"\n[[station]]\naddress = 1\n"
                           "register = [ { at = \"SW\" } ]\n";
const char *const wrong = "line.port = \"a\"\n[[station]]\naddress = 1\n"
                          "register = [ { at = \"D 40\" } ]\n";

std::unique_ptr<Plugin> privateCopy()
{
    return Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy);
}

class ConfigReloadTest : public ::testing::Test {
protected:
    ConfigReloadTest()
    {
        prepare(oneMonitor);
        reload.apply();
    }

    bool prepare(const char *text)
    {
        QFile file(folder.filePath(QStringLiteral("host.toml")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return reload.prepare(file.fileName(), &errors);
    }

    Cycle::Step step(const std::string &reply)
    {
        answer = reply.empty() ? QByteArray() : frameOf(reply);
        return cycle.step();
    }

    QTemporaryDir folder;
    QVector<ConfigError> errors;
    QByteArray answer;
    Link link { privateCopy(), LinkSettings() };
    Planner planner { privateCopy(), LinkSettings() };
    ConfigReload reload { link, planner, Config() };
    MemoryLine line { [this](const QByteArray &) { return MemoryLine::Answer { answer }; } };
    LineExchange exchange { line };
    Cycle cycle { link, exchange };
};

} // namespace

TEST_F(ConfigReloadTest, TheNewPlanIsPolledAfterTheRequestInProgress)
{
    step("");
    prepare(status);

    const bool duringRetry = reload.apply();
    const Cycle::Step retried = step("01 03 02 00 05");
    const bool between = reload.apply();
    step("01 03 02 00 21");

    EXPECT_FALSE(duringRetry);
    EXPECT_EQ(retried, Cycle::Step::Served);
    EXPECT_TRUE(between);
    EXPECT_FALSE(reload.isWaiting());
    EXPECT_EQ(line.sent(),
              (QVector<QByteArray> { frameOf("01 03 D0 00 00 01"), frameOf("01 03 D0 00 00 01"),
                                     frameOf("01 03 20 00 00 01") }));
    EXPECT_EQ(link.registerState(1, QStringLiteral("D"), 0).value, 5);
    EXPECT_EQ(link.registerState(1, QStringLiteral("SW"), 0).value, 0x21);
}

TEST_F(ConfigReloadTest, AWriteThatWaitsIsSentUnderTheNewPlan)
{
    link.write(1, QStringLiteral("CW"), 0, { 5 });
    prepare(status);

    reload.apply();
    const Cycle::Step written = step("01 06 10 01 00 05");

    EXPECT_EQ(written, Cycle::Step::Served);
    EXPECT_EQ(line.sent(), QVector<QByteArray> { frameOf("01 06 10 01 00 05") });
    EXPECT_EQ(cycle.counters().writes().good, 1U);
}

TEST_F(ConfigReloadTest, ABadFileLeavesTheOldPlanRunning)
{
    const bool accepted = prepare(wrong);
    const bool applied = reload.apply();
    step("01 03 02 00 05");

    EXPECT_FALSE(accepted);
    EXPECT_FALSE(applied);
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.at(0).line, 4);
    EXPECT_EQ(line.sent(), QVector<QByteArray> { frameOf("01 03 D0 00 00 01") });
    EXPECT_EQ(reload.current().stations.at(0).registers.at(0).at, QStringLiteral("D 0"));
}

TEST_F(ConfigReloadTest, AFileThatIsNoTomlIsRefused)
{
    EXPECT_FALSE(prepare("[[station"));

    EXPECT_EQ(errors.size(), 1);
    EXPECT_FALSE(reload.isWaiting());
}

TEST_F(ConfigReloadTest, ThePlanIsTheOneThatIsPolled)
{
    prepare(status);
    const Plan before = reload.plan();

    reload.apply();

    EXPECT_EQ(before.blocks.constFirst().regType, QStringLiteral("D"));
    EXPECT_EQ(reload.plan().blocks.constFirst().regType, QStringLiteral("SW"));
}

TEST_F(ConfigReloadTest, ABadFileLeavesTheWaitingPlanWaiting)
{
    prepare(status);
    prepare(wrong);

    const bool applied = reload.apply();

    EXPECT_TRUE(applied);
    EXPECT_EQ(reload.current().stations.at(0).registers.at(0).at, QStringLiteral("SW"));
}

TEST_F(ConfigReloadTest, EverySettingOfTheLineThatDiffersIsNamed)
{
    prepare("[line]\nport = \"b\"\nspeed = 19200\nparity = \"odd\"\nstop_bits = 2\n"
            "timeout_ms = 50\ngap = \"3.5 characters\"\necho = \"no\"\nrs485 = true\nshared = "
            "true\n[link]\ntries = "
            "2\nblock_size = 8\n"
            "[[station]]\naddress = 1\n");

    EXPECT_EQ(reload.needRestart().join(QLatin1Char(' ')).toStdString(),
              "line.port line.speed line.parity line.stop_bits line.timeout_ms line.gap line.echo "
              "line.rs485 "
              "line.shared link.tries link.block_size");
}

TEST_F(ConfigReloadTest, FileWithoutAPortAsksForNoOther)
{
    Config running;
    running.line.port = QStringLiteral("named by the host");
    ConfigReload named(link, planner, running);
    prepare("[[station]]\naddress = 1\n"); // writes the file

    EXPECT_TRUE(named.prepare(folder.filePath(QStringLiteral("host.toml")), nullptr));
    EXPECT_EQ(named.needRestart(), QStringList());
    named.apply();
    EXPECT_EQ(named.current().line.port, QStringLiteral("named by the host"));
}

TEST_F(ConfigReloadTest, SettingsOfTheLineWaitForARestart)
{
    prepare("[line]\nport = \"\"\nspeed = 19200\n[link]\nblock_size = 8\n"
            "[[station]]\naddress = 1\n");

    reload.apply();

    EXPECT_EQ(reload.needRestart(),
              (QStringList { QStringLiteral("line.speed"), QStringLiteral("link.block_size") }));
    EXPECT_EQ(reload.current().line.speed, 9600);
    EXPECT_EQ(reload.current().link.blockSize, 16);
}
