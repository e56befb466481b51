// SPDX-License-Identifier: MIT
// Ticked values on their way to a drive: what speaks against it, and what comes of it.
#include "parameters_fixture.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;

namespace {

struct Ticked : MadeUpParameters {
    explicit Ticked(int fileStation = 1)
    {
        book.showFile(ParameterBook::First, QStringLiteral("/stick/drive.txt"),
                      tunedSet(fileStation));
        MadeUpParameters::read(1, factorySet(1));
        book.tick({ at(8, 2), at(10, 13) }, true);
    }

    std::string refusal() const { return restore.refusal(restore.plan()).toStdString(); }
    std::string reported() const { return restore.report().join(QLatin1Char('\n')).toStdString(); }
};

RestoreReport allTaken()
{
    RestoreReport report;
    report.compared = 2;
    report.written = 2;
    report.verified = 2;
    return report;
}

} // namespace

TEST(ParameterRestore, NamesDriveFileAndValues)
{
    const Ticked made;

    const RestorePlan plan = made.restore.plan();

    EXPECT_EQ(plan.source.toStdString(), "drive.txt");
    EXPECT_EQ(plan.drive.toStdString(), "Feed pump");
    EXPECT_EQ(plan.station, 1);
    EXPECT_EQ(plan.set.values.size(), 2);
    EXPECT_FALSE(plan.isOfOther());
    EXPECT_EQ(made.refusal(), "");
}

TEST(ParameterRestore, WritesNothingBeforeItBegins)
{
    Ticked made;
    EXPECT_EQ(made.jobs.restores.size(), 0U);

    EXPECT_TRUE(made.restore.begin(made.restore.plan(), false));

    ASSERT_EQ(made.jobs.restores.size(), 1U);
    EXPECT_EQ(made.jobs.restores[0].station, 1);
    EXPECT_EQ(
        made.jobs.restores[0].set.values,
        (QMap<int, quint16> { { at(8, 2), quint16 { 120 } }, { at(10, 13), quint16 { 680 } } }));
}

TEST(ParameterRestore, IsRefusedWhileTheMotorRuns)
{
    Ticked made;
    made.standing = Standing::Runs;

    EXPECT_FALSE(made.restore.begin(made.restore.plan(), false));

    EXPECT_EQ(made.refusal(), "The motor of Feed pump runs, or may run. Stop it first.");
    EXPECT_EQ(made.jobs.restores.size(), 0U);
}

TEST(ParameterRestore, IsRefusedWhereNothingSaysThatTheMotorStands)
{
    Ticked made;
    made.standing = Standing::Unknown;

    EXPECT_FALSE(made.restore.begin(made.restore.plan(), false));

    EXPECT_EQ(made.refusal(),
              "Nothing says that the motor of Feed pump stands: its status word is not read, "
              "or old.");
}

TEST(ParameterRestore, IsRefusedWithoutATick)
{
    Ticked made;
    made.book.tick({ at(8, 2), at(10, 13) }, false);

    EXPECT_FALSE(made.restore.begin(made.restore.plan(), false));

    EXPECT_EQ(made.refusal(), "No row is ticked.");
}

TEST(ParameterRestore, ValuesOfAnotherStationWantAnAgreement)
{
    Ticked made(2);
    EXPECT_TRUE(made.restore.plan().isOfOther());

    EXPECT_FALSE(made.restore.begin(made.restore.plan(), false));
    EXPECT_EQ(made.jobs.restores.size(), 0U);

    EXPECT_TRUE(made.restore.begin(made.restore.plan(), true));
    EXPECT_EQ(made.jobs.restores[0].station, 1);
}

TEST(ParameterRestore, ASecondOneWaitsForTheEndOfTheFirst)
{
    Ticked made;
    made.restore.begin(made.restore.plan(), false);

    EXPECT_FALSE(made.restore.begin(made.restore.plan(), false));

    EXPECT_EQ(made.refusal(), "A restore is under way.");
}

TEST(ParameterRestore, ReportsWrittenVerifiedAndNotLookedAtAsThreeNumbers)
{
    Ticked made;
    made.restore.begin(made.restore.plan(), false);
    made.restore.noteProgress(501, 1, 2);
    EXPECT_EQ(made.restore.progressText().toStdString(), "1 of 2 registers read");

    made.restore.noteRestored(501, allTaken());

    EXPECT_TRUE(made.restore.isRestored());
    EXPECT_EQ(made.reported(),
              "2 compared, 2 written, 2 verified\n"
              "0 refused, 0 still different, 0 not looked at");
}

TEST(ParameterRestore, ReadsTheDriveAnewAsAWriteMayChangeOtherRegisters)
{
    Ticked made;
    made.restore.begin(made.restore.plan(), false);

    made.restore.noteRestored(501, allTaken());

    EXPECT_EQ(made.book.side(ParameterBook::Second).set.values.size(), 0);
    EXPECT_TRUE(made.book.isReading());
    EXPECT_EQ(made.jobs.backups.size(), 2U);
}

TEST(ParameterRestore, TellsWhatWasRefusedAndWhatStillDiffers)
{
    Ticked made;
    made.restore.begin(made.restore.plan(), false);
    RestoreReport report;
    report.compared = 2;
    report.written = 1;
    report.refused = QStringList(QStringLiteral("station 1, F 8.2: illegal data value"));
    report.remaining = { { at(10, 13), quint16 { 680 }, quint16 { 13 } } };

    made.restore.noteRestored(501, report);

    EXPECT_FALSE(made.restore.isRestored());
    EXPECT_EQ(made.reported(),
              "2 compared, 1 written, 0 verified\n"
              "1 refused, 1 still different, 0 not looked at\n"
              "station 1, F 8.2: illegal data value\n"
              "still different, wanted | held: F c.13 (0xFC0D): 680 | 13");
}

TEST(ParameterRestore, EndsWhenTheMotorIsStarted)
{
    Ticked made;
    made.restore.begin(made.restore.plan(), false);
    made.restore.look();
    EXPECT_EQ(made.jobs.cancelled.size(), 0U);

    made.standing = Standing::Runs;
    made.restore.look();
    made.restore.look();
    EXPECT_EQ(made.jobs.cancelled, std::vector<int> { 501 });

    RestoreReport report;
    report.unseen = 2;
    report.interrupted = QStringLiteral("cancelled");
    made.restore.noteRestored(501, report);
    EXPECT_EQ(made.restore.report().at(2).toStdString(),
              "It was ended because the motor was started.");
}

TEST(ParameterRestore, SaysWhyItBrokeOff)
{
    Ticked made;
    made.restore.begin(made.restore.plan(), false);
    RestoreReport report;
    report.unseen = 2;
    report.interrupted = QStringLiteral("station 1 does not answer");

    made.restore.noteRestored(501, report);

    EXPECT_EQ(made.restore.report().at(2).toStdString(), "It broke off: station 1 does not answer");
}

TEST(ParameterRestore, AClosedLineIsSaid)
{
    Ticked made;
    made.jobs.isClosed = true;

    EXPECT_FALSE(made.restore.begin(made.restore.plan(), false));

    EXPECT_EQ(made.reported(), "Nothing was written: the line is closed.");
}

TEST(ParameterRestore, AMotorStandsOnlyWhereItsStatusWordSaysSo)
{
    MadeUpLine made(2);
    PanelLine line(made.port(), made.config, wordsOf(made.config), made.clock());
    EXPECT_EQ(standingOf(line, 1), Standing::Unknown);

    made.readStanding(1);
    made.readRunning(2);
    made.publish();
    line.look();

    EXPECT_EQ(standingOf(line, 1), Standing::Stands);
    EXPECT_EQ(standingOf(line, 2), Standing::Runs);
}
