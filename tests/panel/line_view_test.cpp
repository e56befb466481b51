// SPDX-License-Identifier: MIT
// What the page of the line shows, without its widgets.
#include "made_up_view.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

std::vector<std::string> rowNames(MadeUpLinePage &made)
{
    std::vector<std::string> names;
    for (int row = 0; row < made.view.counts().rowCount(); ++row)
        names.push_back(made.view.counts().index(row, 0).data().toString().toStdString());
    return names;
}

std::string cell(MadeUpLinePage &made, int row, int column)
{
    return made.view.counts().index(row, column).data().toString().toStdString();
}

} // namespace

TEST(LineView, AsksForCountersOnceASecond)
{
    MadeUpLinePage made;
    const int before = made.asked;

    made.view.look();
    made.panel.made.advance(milliseconds(999));
    made.view.look();
    const int early = made.asked;
    made.panel.made.advance(milliseconds(1));
    made.view.look();

    EXPECT_EQ(early - before, 0);
    EXPECT_EQ(made.asked - before, 1);
}

TEST(LineView, EveryStationHasARowAndItsBlocksWhereTheyAreWanted)
{
    MadeUpLinePage made(2);
    made.counters.count(1, ReplyCause::Good, 3);
    made.counters.count(1, ReplyCause::Good, 1, 7, true);
    made.counted(seconds(1));

    EXPECT_EQ(rowNames(made), (std::vector<std::string> { "All", "1 Feed pump", "2 Cooling fan" }));
    EXPECT_EQ(cell(made, 0, CountsModel::SentColumn), "4");
    made.view.showBlocks(true);
    EXPECT_EQ(rowNames(made),
              (std::vector<std::string> { "All", "1 Feed pump", "    write CW", "    read D 0-7",
                                          "2 Cooling fan" }));
}

TEST(LineView, AStationThatTheConfigurationDoesNotHaveIsShownToo)
{
    MadeUpLinePage made(1);
    made.counters.count(9, ReplyCause::Silence, 1);

    made.counted(seconds(1));

    EXPECT_EQ(rowNames(made), (std::vector<std::string> { "All", "1 Feed pump", "9" }));
}

TEST(LineView, TheLastMinuteAndTheWholeAreTold)
{
    MadeUpLinePage made;
    made.counters.count(1, ReplyCause::BadCrc, 8);
    for (int second = 1; second <= 100; ++second) {
        made.counters.count(1, ReplyCause::Good, 10);
        made.counted(seconds(second));
    }

    EXPECT_EQ(cell(made, 0, CountsModel::CrcColumn), "0");
    EXPECT_EQ(made.view.loadText().toStdString(), "Line held 30 % of the time (last 60 s)");
    made.view.showRecent(false);
    EXPECT_EQ(cell(made, 0, CountsModel::CrcColumn), "8");
    EXPECT_EQ(made.view.loadText().toStdString(), "Line held 30 % of the time (since the start)");
}

TEST(LineView, CountsThatNobodyRenewsAreOld)
{
    MadeUpLinePage made;
    made.counters.count(1, ReplyCause::Good, 8);
    made.counted(seconds(1));
    const QModelIndex sent = made.view.counts().index(0, CountsModel::SentColumn);
    EXPECT_FALSE(sent.data(IsFaintRole).toBool());

    made.panel.made.advance(seconds(7));
    made.view.look();

    EXPECT_TRUE(sent.data(IsFaintRole).toBool());
    EXPECT_EQ(made.view.verdict().text.toStdString(), "Nothing was heard of the line for 7 s");
    EXPECT_TRUE(made.view.verdict().isBad);
}

TEST(LineView, ALineThatIsNotOpenCountsNothing)
{
    MadeUpLinePage made;

    made.view.noteCounters({});

    EXPECT_EQ(made.view.loadText().toStdString(), "");
}

TEST(LineView, TheSentenceNamesTheStationWithTheBadCable)
{
    MadeUpLinePage made;

    playBadCable(made);

    EXPECT_EQ(made.view.verdict().text.toStdString(),
              "Station 3 (Conveyor): 4 % wrong CRC, all others clean: look at its stub");
}

TEST(LineView, FramesStandStillWhileTheyAreRead)
{
    MadeUpLinePage made;
    made.passed(1, "01030400050007");
    made.view.look();
    made.view.setPaused(true);

    made.passed(1, "");
    made.view.look();
    const int paused = made.view.frames().rowCount();
    made.view.setPaused(false);

    EXPECT_EQ(paused, 2);
    EXPECT_EQ(made.view.frames().rowCount(), 3);
}

TEST(LineView, AFilterIsAppliedAtOnce)
{
    MadeUpLinePage made;
    playBadCable(made);

    made.view.setFilter({ 3, true });

    EXPECT_EQ(made.view.frames().rowCount(), 4);
    EXPECT_EQ(made.view.chosenCounts().requests, 700U);
}

TEST(LineView, WhatIsRecordedIsTold)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("line.pcap"));
    MadeUpLinePage made;
    EXPECT_EQ(made.view.recordText().toStdString(), "");

    made.view.recorder().begin(file, false);
    made.passed(1, "01030400050007");
    made.view.recorder().end();
    made.view.recorder().join();

    EXPECT_EQ(made.view.recordText(), QStringLiteral("Recorded: 2 frames in ") + file);
}
