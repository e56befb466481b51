// SPDX-License-Identifier: MIT
// Ports, plan and configuration: what runs stays until another file is whole.
#include "made_up_connect.h"

#include "panel/lineview/frame_model.h"

#include <QAbstractItemModelTester>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::seconds;
using Stage = ConnectView::Stage;

namespace {

std::string cell(QAbstractItemModel &model, int row, int column)
{
    return model.index(row, column).data().toString().toStdString();
}

/// Two registers of each station, one block each.
std::optional<Plan> twoRegisters(const Config &config, QVector<ConfigError> *)
{
    Plan plan;
    for (const StationConfig &station : config.stations) {
        plan.blocks.append(wanted(station.address, QStringLiteral("D"), 0, 2));
        plan.wantedRegisters += 2;
    }
    return plan;
}

class CheckedConfigTest : public ::testing::Test {
protected:
    CheckedConfig checked(const char *text) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return checkConfig(path, twoRegisters);
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("plant.toml"));
};

} // namespace

TEST_F(CheckedConfigTest, AWholeFileHasAPlan)
{
    const CheckedConfig file = checked("[stop]\ncontrol_word = 0\n[[station]]\naddress = 4\n");

    EXPECT_TRUE(file.isWhole()) << errorsText(file).toStdString();
    EXPECT_EQ(file.plan.wantedRegisters, 2);
    EXPECT_EQ(file.config.stations.constFirst().address, 4);
}

TEST_F(CheckedConfigTest, AnErrorStandsBelowItsLine)
{
    const CheckedConfig file =
        checked("[stop]\ncontrol_word = 0\n[line]\n  speed = \"fast\"\n[[station]]\naddress = 1\n");

    EXPECT_FALSE(file.isWhole());
    EXPECT_EQ(errorsText(file).section(QLatin1Char('\n'), 0, 0).toStdString(),
              "Line 4:  speed = \"fast\"");
    EXPECT_NE(errorsText(file).section(QLatin1Char('\n'), 1, 1).toStdString(), "");
}

TEST_F(CheckedConfigTest, WithoutAStopThereIsNoStopButton)
{
    const CheckedConfig file = checked("[[station]]\naddress = 1\n");

    EXPECT_EQ(errorsText(file).toStdString(),
              "[stop] has no control_word; the stop button needs the value of CW that stops a "
              "drive");
}

TEST_F(CheckedConfigTest, AFileThatIsNotThereIsAnError)
{
    EXPECT_FALSE(checkConfig(folder.filePath(QStringLiteral("none.toml")), twoRegisters).isWhole());
}

TEST_F(CheckedConfigTest, ConfigurationsOfAFolderAreListedByName)
{
    for (const char *name : { "b.toml", "a.toml", "notes.txt" }) {
        QFile file(folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    EXPECT_EQ(configsIn(folder.path()),
              (QStringList { folder.filePath(QStringLiteral("a.toml")),
                             folder.filePath(QStringLiteral("b.toml")) }));
}

TEST(ConnectView, PortsHaveTheirLastingNamesAndHolders)
{
    MadeUpConnect made;

    made.view.look();
    made.view.finish();

    EXPECT_EQ(cell(made.view.ports(), 0, 0), "/dev/ttyUSB0, this line");
    EXPECT_EQ(cell(made.view.ports(), 0, 1), "usb-Maker_RS485_adapter_A50285BI-if00-port0");
    EXPECT_EQ(cell(made.view.ports(), 0, 2), "dx4-panel (process 812)");
    EXPECT_EQ(cell(made.view.ports(), 1, 0), "/dev/ttyS0");
    EXPECT_EQ(cell(made.view.ports(), 1, 2), "nobody seen");
    EXPECT_TRUE(made.view.ports().index(1, 0).data(IsFaintRole).toBool());
}

TEST(ConnectView, PortsAreLookedForEveryThreeSeconds)
{
    MadeUpConnect made;
    made.view.look();
    made.view.finish();
    EXPECT_EQ(made.looks, 1);

    made.panel.made.advance(std::chrono::milliseconds(2999));
    made.view.finish();
    EXPECT_EQ(made.looks, 1);
    made.panel.made.advance(std::chrono::milliseconds(1));
    made.view.finish();
    made.view.finish();

    EXPECT_EQ(made.looks, 2);
}

TEST(ConnectView, ThePlanIsShownWithItsRound)
{
    MadeUpConnect made;

    EXPECT_EQ(made.view.plan().rowCount(), 6);
    EXPECT_EQ(cell(made.view.plan(), 0, 1), "D 0-7");
    EXPECT_EQ(cell(made.view.plan(), 1, 1), "SW");
    // 29 characters of 10 bits at 9600 bit/s.
    EXPECT_EQ(cell(made.view.plan(), 0, 3), "30.2");
    EXPECT_EQ(made.view.planText().section(QLatin1Char(';'), 0, 0).toStdString(),
              "27 registers in 6 blocks");
}

TEST(ConnectView, AFileWithErrorsChangesNothing)
{
    MadeUpConnect made;
    made.next.errors.append({ 3, QStringLiteral("unknown key \"speeed\"") });
    made.next.text =
        QStringList { QString(), QStringLiteral("[line]"), QStringLiteral("speeed = 1") };

    made.view.open(QStringLiteral("/etc/other.toml"));
    EXPECT_EQ(made.view.stage(), Stage::Checking);
    made.view.finish();
    made.view.takeOver();

    EXPECT_EQ(made.view.stage(), Stage::Wrong);
    EXPECT_TRUE(made.reloaded.empty());
    EXPECT_EQ(made.view.stateText().toStdString(),
              "/etc/other.toml has errors; /etc/plant.toml goes on");
    EXPECT_EQ(made.view.detailText().toStdString(), "Line 3:  speeed = 1\nunknown key \"speeed\"");
}

TEST(ConnectView, AWholeFileIsTakenOverWhenSomebodyWantsIt)
{
    MadeUpConnect made;
    made.next.config.stations[0].name = QStringLiteral("New pump");
    int taken = 0;
    QObject::connect(&made.view, &ConnectView::taken, [&] { ++taken; });

    made.view.open(QStringLiteral("/etc/other.toml"));
    made.view.finish();
    EXPECT_TRUE(made.reloaded.empty());
    made.view.takeOver();
    EXPECT_EQ(made.reloaded.size(), 1U);
    EXPECT_EQ(taken, 0);
    made.view.noteReloaded({});

    EXPECT_EQ(taken, 1);
    EXPECT_EQ(made.view.stateText().toStdString(), "/etc/other.toml runs");
    EXPECT_EQ(made.view.running().config.stations[0].name.toStdString(), "New pump");
}

TEST(ConnectView, WhatNeedsANewStartIsNamed)
{
    MadeUpConnect made;
    made.next.config.line.speed = 19200;
    made.view.open(QStringLiteral("/etc/other.toml"));
    made.view.finish();

    made.view.takeOver();
    made.view.noteReloaded({ QStringLiteral("line.speed") });

    EXPECT_EQ(made.view.stateText().toStdString(),
              "/etc/other.toml runs, but for line.speed: these take effect with a new start of "
              "dx4-panel");
    EXPECT_EQ(made.view.running().config.line.speed, 9600) << "the line goes on as it was";
}

TEST(ConnectView, ALineThatDoesNotTakeAFileOverIsToldOf)
{
    MadeUpConnect made;
    made.view.open(QStringLiteral("/etc/other.toml"));
    made.view.finish();
    made.view.takeOver();

    made.panel.made.advance(seconds(9));
    made.view.look();
    EXPECT_EQ(made.view.stage(), Stage::Taking);
    made.panel.made.advance(seconds(1));
    made.view.finish();

    EXPECT_EQ(made.view.stateText().toStdString(),
              "The line has not taken /etc/other.toml over; /etc/plant.toml goes on");
    EXPECT_TRUE(made.view.isStateBad());
    made.view.noteReloaded({});
    EXPECT_EQ(made.view.stage(), Stage::Taken);
}

TEST(ConnectView, OtherStationsNeedANewStart)
{
    MadeUpConnect made;
    made.next.config.stations.removeLast();

    made.view.open(QStringLiteral("/etc/other.toml"));
    made.view.finish();
    made.view.takeOver();

    EXPECT_EQ(made.view.stage(), Stage::Whole);
    EXPECT_FALSE(made.view.canTakeOver());
    EXPECT_TRUE(made.reloaded.empty());
    EXPECT_EQ(made.view.stateText().toStdString(),
              "/etc/other.toml is whole. It has other stations: start dx4-panel with it; "
              "/etc/plant.toml goes on");
}

TEST(ConnectView, AReloadThatSomebodyElseAskedForIsNotTaken)
{
    MadeUpConnect made;

    made.view.noteReloaded({ QStringLiteral("line.speed") });

    EXPECT_EQ(made.view.stage(), Stage::Running);
}

TEST(TextTable, HoldsWhatAModelPromises)
{
    TextTable table({ QStringLiteral("A"), QStringLiteral("B") }, { 1 });
    QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::Fatal);

    table.setRows({ { { QStringLiteral("x"), QStringLiteral("1") }, true } });
    table.setRows({});

    EXPECT_EQ(table.rowCount(), 0);
}
