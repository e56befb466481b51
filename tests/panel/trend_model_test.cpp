// SPDX-License-Identifier: MIT
// Round scales, windows of time, triggers and the table of a window.
#include "panel/trend/nice_scale.h"
#include "panel/trend/time_window.h"
#include "panel/trend/trend_csv.h"
#include "panel/trend/trigger.h"

#include <QBuffer>

#include <gtest/gtest.h>

using namespace dx4::panel;

namespace {

constexpr Moment noon = 1'772'366'400'000; // 2026-03-01 12:00 UTC
constexpr Moment minute = 60'000;

TraceKey key(int station)
{
    return { station, QStringLiteral("D"), 0 };
}

TriggerRule rule(TriggerRule::When when, double level = 0.0)
{
    return { when, key(1), level };
}

TraceReading frequency(std::vector<Column> columns)
{
    TraceReading trace;
    trace.choice.key = key(1);
    trace.drive = QStringLiteral("Feed pump");
    trace.name = QStringLiteral("output frequency");
    trace.scaling.unit = QStringLiteral("Hz");
    trace.scaling.factor = 0.01;
    trace.scaling.decimals = 2;
    trace.run = { noon, 1'000, std::move(columns) };
    return trace;
}

std::string csvOf(const QVector<TraceReading> &traces, Moment shift = 0)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(writeTrendCsv(traces, shift, buffer, nullptr));
    return buffer.data().toStdString();
}

} // namespace

TEST(NiceScale, HasRoundStepsThatHoldTheRange)
{
    const NiceScale scale = niceScale(3.0, 49.98, 5, 2);

    EXPECT_DOUBLE_EQ(scale.lowest, 0.0);
    EXPECT_DOUBLE_EQ(scale.step, 10.0);
    EXPECT_EQ(scale.decimals, 0);
}

TEST(NiceScale, TakesTwoAndAHalfWithItsDigit)
{
    const NiceScale scale = niceScale(0.2, 12.1, 5, 1);

    EXPECT_DOUBLE_EQ(scale.step, 2.5);
    EXPECT_EQ(scale.decimals, 1);
}

TEST(NiceScale, IsNeverFinerThanTheRegister)
{
    const NiceScale scale = niceScale(397.0, 397.0, 5, 0);

    EXPECT_DOUBLE_EQ(scale.lowest, 397.0);
    EXPECT_DOUBLE_EQ(scale.step, 1.0);
}

TEST(NiceScale, HoldsWhatIsBelowZero)
{
    const NiceScale scale = niceScale(-12.0, 4.0, 5, 0);

    EXPECT_DOUBLE_EQ(scale.lowest, -15.0);
    EXPECT_DOUBLE_EQ(scale.step, 5.0);
}

TEST(TimeTicks, StandAtRoundTimesOfTheirZone)
{
    const Moment halfHour = 30 * minute;

    const TimeTicks ticks = timeTicks(noon + 1'000, noon + 61'000 * 60, halfHour, 4);

    EXPECT_EQ(ticks.step, 15 * minute);
    EXPECT_EQ(ticks.at.first(), noon + 15 * minute);
}

TEST(TimeTicks, AreNoMoreThanThereIsRoomFor)
{
    for (Moment span = 10'000; span <= 24 * 60 * minute; span *= 2)
        EXPECT_LE(timeTicks(noon, noon + span, 0, 6).at.size(), 7);
}

TEST(TimeWindow, FollowsTheTimeUntilItIsPaused)
{
    TimeWindow window;
    EXPECT_EQ(window.to(noon), noon);

    window.pause(noon);
    EXPECT_EQ(window.to(noon + minute), noon);

    window.follow();
    EXPECT_EQ(window.to(noon + minute), noon + minute);
}

TEST(TimeWindow, KeepsItsMiddleWhereItStandsStill)
{
    TimeWindow window;
    window.pause(noon);

    window.setSpan(10 * minute, noon);

    EXPECT_EQ(window.from(noon), noon - 30'000 - 5 * minute);
    EXPECT_EQ(window.to(noon), noon - 30'000 + 5 * minute);
}

TEST(TimeWindow, GoesNoFurtherThanToThePresent)
{
    TimeWindow window;

    window.pan(-10 * minute, noon);
    EXPECT_EQ(window.to(noon), noon - 10 * minute);

    window.pan(20 * minute, noon);
    EXPECT_EQ(window.to(noon), noon);
    EXPECT_FALSE(window.isLive());
}

TEST(TimeWindow, ZoomsAroundAMomentThatStaysWhereItIs)
{
    TimeWindow window;
    window.setSpan(10 * minute, noon);
    window.pause(noon);

    window.zoom(0.5, noon - 2 * minute, noon);

    EXPECT_EQ(window.span(), 5 * minute);
    EXPECT_EQ(window.to(noon), noon - minute);
}

TEST(TimeWindow, IsBetweenTenSecondsAndADay)
{
    TimeWindow window;

    window.zoom(0.001, noon, noon);
    EXPECT_EQ(window.span(), 10'000);

    window.setSpan(100 * 24 * 60 * minute, noon);
    EXPECT_EQ(window.span(), 24 * 60 * minute);
}

TEST(TimeWindow, HasAMomentInItsMiddleBeforeItsSecondHalfHasCome)
{
    TimeWindow window;

    window.centre(noon);

    EXPECT_EQ(window.from(noon), noon - 30'000);
    EXPECT_EQ(window.to(noon), noon + 30'000);
}

TEST(Trigger, FiresWhenItsLevelIsCrossedAndThenNoMore)
{
    Trigger trigger;
    trigger.arm(rule(TriggerRule::When::Rises, 40.0));

    EXPECT_FALSE(trigger.note(key(1), 39.9));
    EXPECT_TRUE(trigger.note(key(1), 40.0));
    EXPECT_FALSE(trigger.note(key(1), 30.0));
    EXPECT_FALSE(trigger.note(key(1), 50.0));
}

TEST(Trigger, IsNotFiredByAValueThatIsThereAlready)
{
    Trigger trigger;
    trigger.arm(rule(TriggerRule::When::Falls, 10.0));

    EXPECT_FALSE(trigger.note(key(1), 5.0));
    EXPECT_FALSE(trigger.note(key(1), 20.0));
    EXPECT_TRUE(trigger.note(key(1), 9.0));
}

TEST(Trigger, LooksAtItsOwnRegisterAlone)
{
    Trigger trigger;
    trigger.arm(rule(TriggerRule::When::Rises, 40.0));

    EXPECT_FALSE(trigger.note(key(2), 10.0));
    EXPECT_FALSE(trigger.note(key(2), 50.0));
    EXPECT_FALSE(trigger.noteFault());
    EXPECT_TRUE(trigger.isArmed());
}

TEST(TrendCsv, HasALineForEachColumnThatIsKnown)
{
    const TraceReading trace = frequency({ { 4990, 5001, 4998, 3, ColumnQuality::Good, false },
                                           {},
                                           { 4998, 4998, 4998, 0, ColumnQuality::Failed, true } });

    EXPECT_EQ(csvOf({ trace }),
              "time,Feed pump output frequency [Hz] lowest,Feed pump output frequency [Hz] highest,"
              "Feed pump output frequency [Hz] last,Feed pump output frequency [Hz] changes,"
              "Feed pump output frequency [Hz] quality\n"
              "2026-03-01T12:00:00.000Z,49.90,50.01,49.98,3,good\n"
              "2026-03-01T12:00:02.000Z,49.98,49.98,49.98,0,failed+gap\n");
}

TEST(TrendCsv, LeavesCellsEmptyThatOneTraceDoesNotKnow)
{
    TraceReading bit = frequency({ {}, { 0, 2, 2, 1, ColumnQuality::Good, false } });
    bit.name = QStringLiteral("running");
    bit.choice.bit = 1;
    const TraceReading trace = frequency({ { 1, 1, 1, 1, ColumnQuality::Good, false }, {} });

    const std::string csv = csvOf({ trace, bit });

    EXPECT_NE(csv.find("\n2026-03-01T12:00:00.000Z,0.01,0.01,0.01,1,good,,,,,\n"),
              std::string::npos);
    EXPECT_NE(csv.find("\n2026-03-01T12:00:01.000Z,,,,,,0,1,1,1,good\n"), std::string::npos);
}

TEST(TrendCsv, TellsTheTimeOfDayAsItIsNow)
{
    const TraceReading trace = frequency({ { 1, 1, 1, 1, ColumnQuality::Good, false } });

    EXPECT_NE(csvOf({ trace }, 3'600'000).find("\n2026-03-01T13:00:00.000Z,"), std::string::npos);
}

TEST(TraceReading, SaysNothingOfWhatIsNotKnown)
{
    const TraceReading trace =
        frequency({ { 4990, 5001, 4998, 3, ColumnQuality::Good, false }, {} });
    const QLocale locale = QLocale::c();

    EXPECT_EQ(textAt(trace, noon + 500, locale).toStdString(), "49.98 Hz");
    EXPECT_EQ(textAt(trace, noon + 1'500, locale).toStdString(), "---");
    EXPECT_EQ(textAt(trace, noon - 1, locale).toStdString(), "---");
    EXPECT_EQ(textAt(trace, noon + 5'000, locale).toStdString(), "---");
}
