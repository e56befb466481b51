// SPDX-License-Identifier: MIT
// One register over time: peaks, gaps and bounds at every level.
#include "panel/trend/register_history.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace dx4::panel;

namespace {

constexpr Moment start = 1'772'366'400'000; // 2026-03-01 12:00 UTC
constexpr Moment minute = 60'000;
constexpr Moment hour = 60 * minute;
constexpr std::size_t coarsest = historyLevels.size() - 1;

ColumnRun readAll(RegisterHistory &history, std::size_t level, Moment now)
{
    ColumnRun run;
    history.read(level, start - 48 * hour, now + 1, now, &run);
    return run;
}

const Column &columnOf(const ColumnRun &run, Moment at)
{
    return run.columns.at(static_cast<std::size_t>((at - run.begin) / run.width));
}

} // namespace

TEST(TrendHistory, APeakOfOneValueIsInEveryLevel)
{
    RegisterHistory history;
    history.note(start, 500);
    history.note(start + 20'010, 9000);
    history.note(start + 20'020, 500);

    for (std::size_t level = 0; level < historyLevels.size(); ++level) {
        const ColumnRun run = readAll(history, level, start + minute);
        EXPECT_EQ(columnOf(run, start + 20'010).highest, 9000);
        EXPECT_EQ(columnOf(run, start + 20'010).lowest, 500);
        EXPECT_EQ(columnOf(run, start + 20'010).last, 500);
    }
}

TEST(TrendHistory, AValueThatStaysIsKnownWithoutBeingReadAgain)
{
    RegisterHistory history;
    history.note(start, 500);

    const ColumnRun run = readAll(history, 0, start + minute);

    ASSERT_EQ(run.columns.size(), 600U);
    for (const Column &column : run.columns)
        EXPECT_EQ(column.last, 500);
    EXPECT_EQ(run.columns.front().count, 1);
    EXPECT_EQ(run.columns.back().count, 0);
    EXPECT_FALSE(run.columns.back().hasGap);
}

TEST(TrendHistory, WhatWasLostLeavesAGapUntilItIsBack)
{
    RegisterHistory history;
    history.note(start, 500);
    history.lose(start + 10'000);
    history.note(start + 30'000, 600);

    const ColumnRun run = readAll(history, 0, start + 40'000);

    EXPECT_TRUE(columnOf(run, start + 9'900).isKnown());
    EXPECT_FALSE(columnOf(run, start + 10'100).isKnown());
    EXPECT_FALSE(columnOf(run, start + 29'900).isKnown());
    EXPECT_TRUE(columnOf(run, start + 30'000).isKnown());
    const ColumnRun coarse = readAll(history, coarsest, start + 40'000);
    EXPECT_TRUE(columnOf(coarse, start + 10'000).hasGap);
    EXPECT_EQ(columnOf(coarse, start + 10'000).lowest, 500);
    EXPECT_EQ(columnOf(coarse, start + 10'000).highest, 600);
}

TEST(TrendHistory, AGapIsFoundAfterTheFactWhereNobodyLooked)
{
    RegisterHistory history;
    history.note(start, 500);
    history.lose(start + 5'000);

    const ColumnRun run = readAll(history, 2, start + hour);

    EXPECT_TRUE(columnOf(run, start + 4'000).isKnown());
    EXPECT_FALSE(columnOf(run, start + 8'000).isKnown());
    EXPECT_FALSE(run.columns.back().isKnown());
}

TEST(TrendHistory, AGivenUpReadIsMarkedUntilTheNextGoodOne)
{
    RegisterHistory history;
    history.note(start, 500);
    history.note(start + 1'000, 500, true);
    history.note(start + 2'000, 500);

    const ColumnRun run = readAll(history, 0, start + 3'000);

    EXPECT_EQ(columnOf(run, start + 900).quality, ColumnQuality::Good);
    EXPECT_EQ(columnOf(run, start + 1'500).quality, ColumnQuality::Failed);
    EXPECT_EQ(columnOf(run, start + 2'500).quality, ColumnQuality::Good);
}

TEST(TrendHistory, SignedCountsAreComparedAsSigned)
{
    RegisterHistory history(Counts::Signed);
    history.note(start, 5);
    history.note(start + 10, 0xFFFB);

    const ColumnRun run = readAll(history, coarsest, start + minute);

    EXPECT_EQ(run.columns.front().lowest, 0xFFFB);
    EXPECT_EQ(run.columns.front().highest, 5);
}

TEST(TrendHistory, BitsAreThoseThatWereSetAlwaysAndThoseThatWereSetOnce)
{
    RegisterHistory history(Counts::Bits);
    history.note(start, 0x03);
    history.note(start + 10, 0x06);
    history.note(start + 20, 0x02);

    const ColumnRun run = readAll(history, coarsest, start + minute);

    EXPECT_EQ(run.columns.front().lowest, 0x02);
    EXPECT_EQ(run.columns.front().highest, 0x07);
    EXPECT_EQ(run.columns.front().last, 0x02);
}

TEST(TrendHistory, EveryLevelSaysWhatAPlainListSays)
{
    RegisterHistory history;
    std::mt19937 random(7);
    std::map<Moment, quint16> list;
    Moment at = start;
    for (int i = 0; i < 2'000; ++i) {
        at += 1 + static_cast<Moment>(random() % 300);
        const auto value = static_cast<quint16>(random() % 1'000 + static_cast<unsigned>(i));
        list[at] = value;
        history.note(at, value);
    }

    for (std::size_t level = 0; level < historyLevels.size(); ++level) {
        const ColumnRun run = readAll(history, level, at);
        for (std::size_t i = 1; i < run.columns.size(); ++i) {
            const Moment begin = run.beginOf(i);
            auto before = list.upper_bound(begin);
            ASSERT_NE(before, list.begin());
            quint16 lowest = std::prev(before)->second;
            quint16 highest = lowest;
            for (; before != list.end() && before->first < begin + run.width; ++before) {
                lowest = std::min(lowest, before->second);
                highest = std::max(highest, before->second);
            }
            ASSERT_EQ(run.columns[i].lowest, lowest) << "level " << level << ", column " << i;
            ASSERT_EQ(run.columns[i].highest, highest) << "level " << level << ", column " << i;
        }
    }
}

TEST(TrendHistory, AWindowOfADayReadsNoMoreColumnsThanItHasPlacesFor)
{
    RegisterHistory history;
    for (Moment at = 0; at < 24 * hour; at += 5'000)
        history.note(start + at, static_cast<quint16>(at / 5'000 % 1'000));
    const Moment now = start + 24 * hour;

    for (const Moment span : { Moment(10'000), minute, 10 * minute, hour, 8 * hour, 24 * hour }) {
        const std::size_t level = history.levelFor(now - span, now, now, 1'400);
        ColumnRun run;
        history.read(level, now - span, now, now, &run);
        EXPECT_LE(run.columns.size(), 1'400U) << span;
        EXPECT_LE(run.begin, now - span) << span;
        EXPECT_GE(run.columns.size(), 100U) << span;
    }
}

TEST(TrendHistory, ItsMemoryIsFlatOverADay)
{
    RegisterHistory history;
    const std::size_t atFirst = history.bytes();

    for (Moment at = 0; at < 24 * hour; at += 1'000)
        history.note(start + at, static_cast<quint16>(at / 1'000));

    EXPECT_EQ(history.bytes(), atFirst);
    EXPECT_EQ(atFirst, 150'000U);
}

TEST(TrendHistory, WhatIsGoneFromAFineLevelIsShownByACoarserOne)
{
    RegisterHistory history;
    for (Moment at = 0; at < 2 * hour; at += 1'000)
        history.note(start + at, static_cast<quint16>(at / 1'000));
    const Moment now = start + 2 * hour;

    const std::size_t level = history.levelFor(start, start + 10'000, now, 1'400);

    ColumnRun run;
    history.read(level, start, start + 10'000, now, &run);
    EXPECT_EQ(run.width, 10'000);
    ASSERT_FALSE(run.columns.empty());
    EXPECT_EQ(run.columns.front().highest, 9);
}

TEST(TrendHistory, ThePastIsPutBeforeTheRecordingWithAGapBetween)
{
    RegisterHistory history;
    history.note(start, 500);
    const Column row { 100, 300, 200, 3, ColumnQuality::Good, false };

    history.addPast(coarsest, 120'000, { { start - hour, row }, { start - hour + 120'000, row } });

    const ColumnRun run = readAll(history, coarsest, start + minute);
    EXPECT_EQ(columnOf(run, start - hour).highest, 300);
    EXPECT_FALSE(columnOf(run, start - hour).hasGap);
    EXPECT_TRUE(columnOf(run, start - hour + 120'000).hasGap);
    EXPECT_FALSE(columnOf(run, start - 30 * minute).isKnown());
    EXPECT_EQ(columnOf(run, start).last, 500);
}

TEST(TrendHistory, AValueOfThePastStaysForAsLongAsAJournalStatesIt)
{
    RegisterHistory history;
    history.note(start, 500);
    const Column row { 7, 7, 7, 1, ColumnQuality::Good, false };

    history.addPast(3, 10'000,
                    { { start - hour, row },
                      { start - hour + 120'000, row },
                      { start - hour + 600'000, row } });

    const ColumnRun run = readAll(history, 3, start);
    EXPECT_EQ(columnOf(run, start - hour + 60'000).last, 7);
    EXPECT_TRUE(columnOf(run, start - hour + 60'000).isKnown());
    EXPECT_FALSE(columnOf(run, start - hour + 300'000).isKnown());
}
