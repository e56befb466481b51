// SPDX-License-Identifier: MIT
// Two sets of parameters side by side: what is read, how it compares, what may be ticked.
#include "parameters_fixture.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::minutes;
using std::chrono::seconds;

namespace {

std::string state(const MadeUpParameters &made, ParameterBook::Place place = ParameterBook::Second)
{
    return made.book.side(place).stateText(made.book.now()).toStdString();
}

ParameterSet partOf(const ParameterSet &set, int count)
{
    ParameterSet part;
    part.station = set.station;
    for (int address : allParameters().mid(0, count))
        part.values.insert(address, set.values.value(address));
    return part;
}

} // namespace

TEST(ParameterBook, OpensWithTheFirstDriveNotRead)
{
    const MadeUpParameters made;

    EXPECT_EQ(made.book.side(ParameterBook::Second).name.toStdString(), "Feed pump");
    EXPECT_EQ(state(made), "not read");
    EXPECT_EQ(made.jobs.backups.size(), 0U);
    EXPECT_EQ(made.book.countsText().toStdString(), "0 read, 0 refused, 203 not read");
}

TEST(ParameterBook, TellsHowFarAReadingHasCome)
{
    MadeUpParameters made;

    made.book.read();
    EXPECT_EQ(state(made), "waiting to be read");
    ASSERT_EQ(made.jobs.backups.size(), 1U);
    EXPECT_EQ(made.jobs.backups[0].station, 1);

    made.book.noteProgress(1, 60, 203);
    EXPECT_EQ(state(made), "reading 60 of 203");
    EXPECT_TRUE(made.book.isReading());
}

TEST(ParameterBook, ValuesAreAsOldAsTheBeginOfTheirReading)
{
    MadeUpParameters made;
    made.book.read();

    made.made.advance(seconds(20));
    made.book.noteBackedUp(1, factorySet(1), {});

    EXPECT_EQ(state(made), "read 20 s ago, not saved");
    EXPECT_FALSE(made.book.side(ParameterBook::Second).isFresh(made.book.now()));
}

TEST(ParameterBook, ValuesAreFreshForFiveSeconds)
{
    MadeUpParameters made;
    made.read(1, factorySet(1));

    made.made.advance(seconds(4));
    EXPECT_TRUE(made.book.side(ParameterBook::Second).isFresh(made.book.now()));

    made.made.advance(seconds(1));
    EXPECT_FALSE(made.book.side(ParameterBook::Second).isFresh(made.book.now()));
}

TEST(ParameterBook, AFileIsNeverFresh)
{
    MadeUpParameters made;

    made.book.showFile(ParameterBook::First, QStringLiteral("/x/drive.txt"), factorySet(2));

    EXPECT_FALSE(made.book.side(ParameterBook::First).isFresh(made.book.now()));
    EXPECT_EQ(state(made, ParameterBook::First), "file of station 2");
}

TEST(ParameterBook, CountsEachRegisterInOneClass)
{
    MadeUpParameters made;
    made.compare();

    const ClassCounts counts = made.book.counts();

    EXPECT_EQ(counts.differ, 5);
    EXPECT_EQ(counts.equal, 196);
    EXPECT_EQ(counts.onlyHere, 0);
    EXPECT_EQ(counts.onlyThere, 2);
    EXPECT_EQ(counts.notRead, 0);
    EXPECT_EQ(made.book.countsText().toStdString(),
              "5 differ, 196 equal, 0 only left, 2 only right, 0 not read");
}

TEST(ParameterBook, WhatWasNotReadIsNeitherEqualNorDifferent)
{
    MadeUpParameters made;
    made.book.showFile(ParameterBook::First, QStringLiteral("drive.txt"), tunedSet(1));

    made.read(1, partOf(factorySet(1), 30), "the station does not answer");

    const ClassCounts counts = made.book.counts();
    EXPECT_EQ(counts.notRead, 173);
    EXPECT_EQ(counts.equal + counts.differ, 30);
    EXPECT_EQ(made.book.classOf(at(8, 2)), RowClass::NotRead);
    EXPECT_FALSE(made.book.canTick(at(8, 2)));
}

TEST(ParameterBook, AReadingThatBrokeOffSaysSoAndGoesOn)
{
    MadeUpParameters made;

    made.read(1, partOf(factorySet(1), 30), "the station does not answer");
    EXPECT_EQ(state(made), "30 read, 0 s ago");
    EXPECT_EQ(made.failures,
              std::vector<std::string> {
                  "Feed pump was not read to its end: the station does not answer" });

    made.made.advance(minutes(3));
    made.read(2, factorySet(1));
    ASSERT_EQ(made.jobs.backups.size(), 2U);
    EXPECT_EQ(made.jobs.backups[1].values.size(), 30);
    EXPECT_EQ(state(made), "read 3 min ago, not saved");
}

TEST(ParameterBook, AReadingOfAllBeginsAnew)
{
    MadeUpParameters made;
    made.read(1, factorySet(1));

    made.book.read();

    EXPECT_EQ(made.jobs.backups[1].values.size(), 0);
}

TEST(ParameterBook, AFailureWithNothingReadLeavesWhatWasReadEarlier)
{
    MadeUpParameters made;
    made.read(1, factorySet(1));
    made.made.advance(minutes(2));

    ParameterSet nothing;
    made.read(2, nothing, "the line is down");

    EXPECT_EQ(made.book.side(ParameterBook::Second).set.values.size(), 203);
    EXPECT_EQ(state(made), "read 2 min ago, not saved");
}

TEST(ParameterBook, WhoCancelsIsNotToldThatItFailed)
{
    MadeUpParameters made;
    made.book.read();

    made.book.cancel();
    made.book.noteBackedUp(1, partOf(factorySet(1), 40), QStringLiteral("cancelled"));

    EXPECT_EQ(made.jobs.cancelled, std::vector<int> { 1 });
    EXPECT_EQ(made.failures, std::vector<std::string> {});
    EXPECT_EQ(state(made), "40 read, 0 s ago");
    EXPECT_FALSE(made.book.isReading());
}

TEST(ParameterBook, AClosedLineIsSaid)
{
    MadeUpParameters made;
    made.jobs.isClosed = true;

    made.book.read();

    EXPECT_EQ(made.failures,
              std::vector<std::string> { "Feed pump cannot be read: the line is closed." });
    EXPECT_FALSE(made.book.isReading());
}

TEST(ParameterBook, AWriteTakesTheValueAwayUntilItIsReadAgain)
{
    MadeUpParameters made;
    made.read(1, factorySet(1));

    made.book.noteWritten(wrote(1, at(8, 2), 77));

    EXPECT_FALSE(made.book.side(ParameterBook::Second).value(at(8, 2)));
    EXPECT_EQ(state(made), "202 read, 0 s ago");
}

TEST(ParameterBook, AWriteOfAnotherStationTakesNothingAway)
{
    MadeUpParameters made;
    made.read(1, factorySet(1));

    made.book.noteWritten(wrote(2, at(8, 2), 77));

    EXPECT_EQ(made.book.side(ParameterBook::Second).value(at(8, 2)), 2);
}

TEST(ParameterBook, AWriteInTheMiddleOfAReadingLeavesItsRegisterUnread)
{
    MadeUpParameters made;
    made.book.read();

    made.book.noteWritten(wrote(1, at(8, 2), 77));
    made.book.noteBackedUp(1, factorySet(1), {});

    EXPECT_FALSE(made.book.side(ParameterBook::Second).value(at(8, 2)));
    EXPECT_EQ(made.book.counts().notRead, 203);
    EXPECT_EQ(made.book.countsText().toStdString(), "202 read, 0 refused, 1 not read");
}

TEST(ParameterBook, OnlyADriveOnTheRightTakesTicks)
{
    MadeUpParameters made;
    made.compare();
    EXPECT_TRUE(made.book.canTick(at(8, 2)));
    EXPECT_FALSE(made.book.canTick(at(8, 3)));
    EXPECT_FALSE(made.book.canTick(at(8, 4)));

    made.book.showFile(ParameterBook::Second, QStringLiteral("other.txt"), factorySet(1));
    EXPECT_FALSE(made.book.canTick(at(8, 2)));
}

TEST(ParameterBook, TickedValuesAreThoseOfTheLeft)
{
    MadeUpParameters made;
    made.compare();

    made.book.tick({ at(8, 2), at(10, 13), at(8, 3) }, true);
    made.book.tick({ at(10, 13) }, false);

    const ParameterSet ticked = made.book.ticked();
    EXPECT_EQ(ticked.values, (QMap<int, quint16> { { at(8, 2), quint16 { 120 } } }));
    EXPECT_EQ(made.jobs.restores.size(), 0U);
}

TEST(ParameterBook, ATickGoesWhenTheDriveHoldsAnotherValueThanWasSeen)
{
    MadeUpParameters made;
    made.compare();
    made.book.tick({ at(8, 2) }, true);

    ParameterSet other = factorySet(1);
    other.values[at(8, 2)] = 99;
    made.read(2, other);

    EXPECT_EQ(made.book.classOf(at(8, 2)), RowClass::Differ);
    EXPECT_FALSE(made.book.isTicked(at(8, 2)));
    EXPECT_TRUE(made.book.ticked().values.isEmpty());
}

TEST(ParameterBook, AnotherSideTakesAllTicksAndTheReadingWithIt)
{
    MadeUpParameters made;
    made.compare();
    made.book.tick({ at(8, 2) }, true);
    made.book.read();

    made.book.showDrive(ParameterBook::Second, 2);
    made.book.noteBackedUp(2, factorySet(1), {});

    EXPECT_EQ(made.jobs.cancelled, std::vector<int> { 2 });
    EXPECT_TRUE(made.book.ticked().values.isEmpty());
    EXPECT_EQ(state(made), "not read");
}

TEST(ParameterBook, ADriveIsNotComparedWithItself)
{
    MadeUpParameters made;

    made.book.showDrive(ParameterBook::First, 1);

    EXPECT_EQ(made.book.side(ParameterBook::Second).kind, ParameterSide::Kind::Nothing);
}

TEST(ParameterBook, TwoDrivesAreReadOneBehindTheOther)
{
    MadeUpParameters made;
    made.book.showDrive(ParameterBook::First, 3);

    made.book.read();
    made.book.noteBackedUp(2, factorySet(1), {});

    ASSERT_EQ(made.jobs.backups.size(), 2U);
    EXPECT_EQ(made.jobs.backups[0].station, 3);
    EXPECT_EQ(made.jobs.backups[1].station, 1);
    EXPECT_EQ(state(made, ParameterBook::First), "waiting to be read");
    EXPECT_EQ(state(made, ParameterBook::Second), "read 0 s ago, not saved");
}

TEST(ParameterBook, WhatWasSavedIsMarkedUntilItIsReadAnew)
{
    MadeUpParameters made;
    made.read(1, factorySet(1));

    made.book.noteSaved(1, factorySet(1));
    EXPECT_EQ(state(made), "read 0 s ago, saved");

    made.read(2, factorySet(1));
    EXPECT_EQ(state(made), "read 0 s ago, not saved");
}

TEST(ParameterNames, AreThoseOfTheConfigurationAlsoForItsOtherDrives)
{
    const MadeUpParameters made;

    const ParameterNames::Label *own = made.book.names().find(1, at(8, 2));
    const ParameterNames::Label *other = made.book.names().find(2, at(10, 13));

    ASSERT_TRUE(own && other);
    EXPECT_EQ(own->name.toStdString(), "acceleration time");
    EXPECT_EQ(other->name.toStdString(), "brake chopper level");
    EXPECT_EQ(made.book.names().find(1, at(8, 3)), nullptr);
}
