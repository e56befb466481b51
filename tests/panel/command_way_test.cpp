// SPDX-License-Identifier: MIT
// From what was asked for to what the drive does.
#include "panel_fixture.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using dx4::host::WriteEnd;
using std::chrono::seconds;
using Stage = CommandWay::Stage;

namespace {

/// A start, whose running bit is bit 1 of SW.
CommandWay begunStart()
{
    CommandWay way;
    way.begin(1000, QStringLiteral("Start"), Expectation { QStringLiteral("SW"), 0, 2, 2 });
    return way;
}

CommandWay echoedStart()
{
    CommandWay way = begunStart();
    way.noteEnded(ended(1000, WriteEnd::Confirmed), seconds(10));
    return way;
}

} // namespace

TEST(CommandWay, WhatWasNeverAskedForSaysNothing)
{
    const CommandWay way;

    EXPECT_EQ(way.text().toStdString(), "");
}

TEST(CommandWay, ACommandWaitsForItsEcho)
{
    const CommandWay way = begunStart();

    EXPECT_EQ(way.text().toStdString(), "Start: on its way, no echo yet");
}

TEST(CommandWay, AnEchoIsNotYetADriveThatObeys)
{
    const CommandWay way = echoedStart();

    EXPECT_EQ(way.stage(), Stage::Echoed);
    EXPECT_EQ(way.text().toStdString(), "Start: echoed");
}

TEST(CommandWay, AStatusWordReadAfterTheEchoShowsTheCommand)
{
    CommandWay way = echoedStart();

    way.noteValue(0x13, seconds(11));

    EXPECT_EQ(way.text().toStdString(), "Start: done, the drive reports it");
}

TEST(CommandWay, AStatusWordReadBeforeTheEchoProvesNothing)
{
    CommandWay way = echoedStart();

    way.noteValue(0x13, seconds(9));

    EXPECT_EQ(way.stage(), Stage::Echoed);
}

TEST(CommandWay, ACommandThatDoesNotShowWithinFiveSecondsIsTold)
{
    CommandWay way = echoedStart();

    way.noteValue(0x01, seconds(14));
    way.look(seconds(15));

    EXPECT_TRUE(way.isBad());
    EXPECT_EQ(way.text().toStdString(), "Start: echoed, but the drive does not report it");
}

TEST(CommandWay, ACommandThatShowsLateIsDoneAfterAll)
{
    CommandWay way = echoedStart();

    way.look(seconds(15));
    way.noteValue(0x03, seconds(16));

    EXPECT_EQ(way.stage(), Stage::Seen);
}

TEST(CommandWay, ARefusalIsToldInWords)
{
    CommandWay way = begunStart();

    way.noteEnded(ended(1000, WriteEnd::Rejected, "station 1, CW: illegal data value"), seconds(1));

    EXPECT_TRUE(way.isBad());
    EXPECT_EQ(way.text().toStdString(), "Start: refused: station 1, CW: illegal data value");
}

TEST(CommandWay, ASentCommandWithoutAnEchoMayHaveBeenTaken)
{
    CommandWay way = begunStart();

    way.noteEnded(ended(1000, WriteEnd::TimedOut), seconds(1));

    EXPECT_EQ(way.text().toStdString(), "Start: sent, but not echoed; the drive may have taken it");
}

TEST(CommandWay, TheEndOfAnotherWriteIsNotItsOwn)
{
    CommandWay way = begunStart();

    way.noteEnded(ended(1001, WriteEnd::Confirmed), seconds(1));

    EXPECT_EQ(way.stage(), Stage::Queued);
}

TEST(CommandWay, AWriteThatIsNotTakenIsRefused)
{
    CommandWay way;

    way.begin(0, QStringLiteral("Start"));

    EXPECT_EQ(way.text().toStdString(), "Start: refused: the line is being closed");
}
