// SPDX-License-Identifier: MIT
// What the pages know of a line, and what they ask of it.
#include "panel_fixture.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::seconds;

namespace {

struct Under {
    explicit Under(int drives = 2)
        : made(drives)
        , line(made.port(), made.config, wordsOf(made.config, made.control), made.clock())
    {
    }

    void look()
    {
        made.publish();
        line.look();
    }

    std::string way() const { return line.drive(0).way.toStdString(); }

    MadeUpLine made;
    PanelLine line;
};

StopReport unconfirmed(const QVector<int> &stations)
{
    StopReport report;
    report.unconfirmed = stations;
    return report;
}

} // namespace

TEST(PanelLine, ADriveIsShownByWhatTheConfigurationCallsItsRegisters)
{
    Under panel;
    panel.made.readRunning(1);

    panel.look();

    const DriveShown drive = panel.line.drive(0);
    EXPECT_EQ(drive.name.toStdString(), "Feed pump");
    EXPECT_EQ(drive.frequency.text().toStdString(), "49.98 Hz");
    EXPECT_EQ(drive.set.text().toStdString(), "50.00 Hz");
    EXPECT_EQ(drive.state.text().toStdString(), "ready, running, at set frequency");
    EXPECT_EQ(drive.fault.text().toStdString(), "no fault");
    EXPECT_FALSE(drive.isFaulty);
    ASSERT_EQ(drive.others.size(), 6);
    EXPECT_EQ(drive.others.at(0).name.toStdString(), "current");
    EXPECT_EQ(drive.others.at(0).shown.text().toStdString(), "6.2 A");
}

TEST(PanelLine, AFaultCodeOtherThanZeroIsAFault)
{
    Under panel;
    panel.made.readStanding(1);
    panel.made.read(1, "FU", 0, 77);

    panel.look();

    EXPECT_TRUE(panel.line.drive(0).isFaulty);
    EXPECT_EQ(panel.line.drive(0).fault.text().toStdString(), "77");
}

TEST(PanelLine, ValuesGetOldThoughNoSnapshotComes)
{
    Under panel;
    panel.made.readRunning(1);
    panel.look();

    panel.made.advance(seconds(7));
    panel.line.look();

    EXPECT_EQ(panel.line.drive(0).frequency.fullText().toStdString(), "49.98 Hz, 7 s old");
}

TEST(PanelLine, ASnapshotThatIsSeenLateIsAsOldAsItIs)
{
    Under panel;
    panel.made.readRunning(1);
    panel.made.publish();

    panel.made.advance(seconds(40));
    panel.line.look();

    EXPECT_EQ(panel.line.drive(0).frequency.text().toStdString(), "---");
}

TEST(PanelLine, AStartWritesTheRunWordAndShowsItsWayToTheStatusWord)
{
    Under panel;
    panel.made.readStanding(1);
    panel.look();

    panel.line.start(0);

    ASSERT_EQ(panel.made.writes.size(), 1U);
    EXPECT_EQ(panel.made.writes[0].regType.toStdString(), "CW");
    EXPECT_EQ(panel.made.writes[0].values, QVector<quint16> { 1 });
    EXPECT_EQ(panel.way(), "Start: on its way, no echo yet");

    panel.line.noteWriteEnded(ended(1000, WriteEnd::Confirmed));
    EXPECT_EQ(panel.way(), "Start: echoed");

    panel.made.advance(seconds(1));
    panel.made.readRunning(1);
    panel.look();
    EXPECT_EQ(panel.way(), "Start: done, the drive reports it");
}

TEST(PanelLine, AReverseWritesTheWordOfTheConfiguration)
{
    Under panel;
    panel.look();
    EXPECT_TRUE(panel.line.drive(0).canReverse);

    panel.line.reverse(0);

    ASSERT_EQ(panel.made.writes.size(), 1U);
    EXPECT_EQ(panel.made.writes[0].values, QVector<quint16> { 3 });
    EXPECT_EQ(panel.way(), "Reverse: on its way, no echo yet");
    EXPECT_EQ(panel.line.mayRun(), QVector<int> { 1 });
}

TEST(PanelLine, WithoutAWordForItNothingIsReversed)
{
    MadeUpLine made;
    PanelLine line(made.port(), made.config, wordsOf(made.config), made.clock());

    line.reverse(0);

    EXPECT_TRUE(made.writes.empty());
    EXPECT_FALSE(line.drive(0).canReverse);
}

TEST(PanelLine, AFrequencyIsWrittenInTheCountsOfTheSetFrequency)
{
    Under panel;
    panel.made.readStanding(2);
    panel.look();

    panel.line.setFrequency(1, 42.5);

    ASSERT_EQ(panel.made.writes.size(), 1U);
    EXPECT_EQ(panel.made.writes[0].station, 2);
    EXPECT_EQ(panel.made.writes[0].regType.toStdString(), "FRE");
    EXPECT_EQ(panel.made.writes[0].values, QVector<quint16> { 4250 });
}

TEST(PanelLine, AMotorThatWasStartedMayRunUntilALaterStatusSaysThatItStands)
{
    Under panel;
    panel.made.readStanding(1);
    panel.look();

    panel.line.start(0);
    panel.look();
    EXPECT_EQ(panel.line.mayRun(), QVector<int> { 1 });

    panel.line.noteWriteEnded(ended(1000, WriteEnd::Rejected));
    panel.look();
    EXPECT_EQ(panel.line.mayRun(), QVector<int> { 1 });

    panel.made.advance(seconds(1));
    panel.made.readStanding(1);
    panel.look();
    EXPECT_EQ(panel.line.mayRun(), QVector<int>());
}

TEST(PanelLine, AMotorThatRanWhenTheLineBrokeMayStillRun)
{
    Under panel;
    panel.made.readRunning(1);
    panel.look();

    panel.made.find(1, "SW", 0)->state.value = 0;
    panel.made.find(1, "SW", 0)->state.stale = true;
    panel.made.advance(seconds(60));
    panel.look();

    EXPECT_EQ(panel.line.mayRun(), QVector<int> { 1 });
}

TEST(PanelLine, AStopThatIsConfirmedIsTold)
{
    Under panel;

    panel.line.stopAll();
    EXPECT_EQ(panel.made.stops, 1);
    EXPECT_EQ(panel.line.message().toStdString(), "Stop: on its way to all drives");

    panel.line.noteStopEnded(1, unconfirmed({}));
    EXPECT_EQ(panel.line.message().toStdString(), "Stop: confirmed by all drives");
    EXPECT_FALSE(panel.line.isMessageBad());
}

TEST(PanelLine, AStopThatIsNotConfirmedNamesTheStations)
{
    Under panel;

    panel.line.stopAll();
    panel.line.noteStopEnded(1, unconfirmed({ 1, 2 }));

    EXPECT_EQ(panel.line.message().toStdString(),
              "Stop not confirmed: Feed pump, Cooling fan. May still run!");
    EXPECT_TRUE(panel.line.isMessageBad());
}

TEST(PanelLine, ADriveWhoseStopIsNotConfirmedSaysSoUntilItsStatusSaysThatItStands)
{
    Under panel;
    panel.made.readRunning(1);
    panel.look();
    panel.line.stopAll();

    panel.line.noteStopEnded(1, unconfirmed({ 1 }));
    EXPECT_EQ(panel.way(), "Stop not confirmed, may still run!");
    EXPECT_TRUE(panel.line.drive(0).isWayBad);
    EXPECT_FALSE(panel.line.drive(1).isWayBad);

    panel.made.advance(seconds(1));
    panel.made.readStanding(1);
    panel.look();
    EXPECT_EQ(panel.way(), "");
}

TEST(PanelLine, AStatusReadBeforeAnUnconfirmedStopDoesNotSettleIt)
{
    Under panel;
    panel.made.readStanding(1);
    panel.look();
    panel.made.advance(seconds(2));
    panel.line.stopAll();

    panel.line.noteStopEnded(1, unconfirmed({ 1 }));
    panel.look();

    EXPECT_EQ(panel.way(), "Stop not confirmed, may still run!");
}

TEST(PanelLine, OfManyDrivesASentenceNamesTheFirstOnes)
{
    Under panel(6);

    EXPECT_EQ(panel.line.namesOf({ 1, 3 }).toStdString(), "Feed pump, Conveyor");
    EXPECT_EQ(panel.line.namesOf({ 1, 2, 3, 4 }).toStdString(),
              "Feed pump, Cooling fan, Conveyor, Roller 4");
    EXPECT_EQ(panel.line.namesOf({ 1, 2, 3, 4, 5 }).toStdString(),
              "Feed pump, Cooling fan, Conveyor and 2 more");
}

TEST(PanelLine, AStartEndsTheWordThatAllWereStopped)
{
    Under panel;
    panel.line.stopAll();
    panel.line.noteStopEnded(1, unconfirmed({}));

    panel.line.start(0);

    EXPECT_EQ(panel.line.message().toStdString(), "");
}

TEST(PanelLine, ALineThatIsDownHidesNoUnconfirmedStop)
{
    Under panel;
    panel.line.stopAll();
    panel.line.noteStopEnded(1, unconfirmed({ 2 }));

    panel.made.next.isOpen = false;
    panel.made.next.downReason = QStringLiteral("the line broke");
    panel.look();

    EXPECT_EQ(panel.line.message().toStdString(),
              "Stop not confirmed: Cooling fan. May still run!\n"
              "The line is down: the line broke");
}

TEST(PanelLine, TheRunningBitIsTheOneThatTheConfigurationCallsRunning)
{
    Config config;
    EXPECT_FALSE(wordsOf(config).runningBit.has_value());

    config.states.insert(9, QStringLiteral("running"));
    config.stop.controlWord = 6;
    ControlConfig control;
    control.run = 17;

    EXPECT_EQ(wordsOf(config, control).runningBit, 9);
    EXPECT_EQ(wordsOf(config, control).stop, 6);
    EXPECT_EQ(wordsOf(config, control).run, 17);
}

TEST(PanelLine, AMotorIsKnownToStandOnlyByAFreshStatusWord)
{
    Under panel;
    EXPECT_FALSE(panel.line.stands(1));

    panel.made.readStanding(1);
    panel.look();
    EXPECT_TRUE(panel.line.stands(1));

    panel.made.advance(seconds(5));
    panel.line.look();
    EXPECT_FALSE(panel.line.stands(1));

    panel.made.readRunning(1);
    panel.look();
    EXPECT_FALSE(panel.line.stands(1));
    EXPECT_FALSE(panel.line.stands(9));
}

TEST(PanelLine, AMotorDoesNotCountAsStandingOnceItsStartWasAskedFor)
{
    Under panel;
    panel.made.readStanding(1);
    panel.look();

    panel.line.start(0);

    EXPECT_FALSE(panel.line.stands(1));
}
