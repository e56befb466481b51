// SPDX-License-Identifier: MIT
// Values over time: nothing is lost between the levels.
#include "journal/history.h"
#include "journal_fixture.h"

#include <random>

using namespace dx4::journal;

namespace {

using HistoryTest = JournalTest;

constexpr Time minuteMs = 60'000;
constexpr Time hourMs = 3'600'000;
constexpr Time dayMs = 24 * hourMs;

/// What a plain list says of the rows of one width.
std::map<Time, HistoryRow> modelOf(const std::vector<Sample> &samples, Time width)
{
    std::map<Time, HistoryRow> rows;
    for (const Sample &sample : samples) {
        const Time begin = sample.time / width * width;
        HistoryRow &row = rows[begin];
        if (row.count == 0)
            row = { sample.lowest, sample.highest, 0, 0, 0 };
        row.lowest = std::min(row.lowest, sample.lowest);
        row.highest = std::max(row.highest, sample.highest);
        row.last = sample.last;
        row.count += sample.count;
        row.quality = std::max(row.quality, static_cast<int>(sample.quality));
    }
    return rows;
}

/// A random walk with peaks and pauses, in whole seconds from noon on.
std::vector<Sample> randomSamples(unsigned seed, int count)
{
    std::mt19937 random(seed);
    std::vector<Sample> samples;
    Time time = noon;
    for (int i = 0; i < count; ++i) {
        time +=
            secondMs * static_cast<Time>(random() % 10 == 0 ? random() % 900 : random() % 3 + 1);
        Sample sample = sampleOf(static_cast<int>(random() % 60000) - 30000, time);
        sample.lowest -= static_cast<int>(random() % 5);
        sample.highest += static_cast<int>(random() % 5);
        sample.count = static_cast<int>(random() % 4) + 1;
        sample.quality = random() % 50 == 0 ? Quality::Stale : Quality::Good;
        samples.push_back(sample);
    }
    return samples;
}

} // namespace

TEST_F(HistoryTest, EveryLevelSaysWhatAPlainListSaysWhereverItIsCut)
{
    const unsigned seed = 20260301;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<Sample> samples = randomSamples(seed, 4000);
    open();

    for (std::size_t from = 0; from < samples.size();) {
        const std::size_t to = std::min(from + random() % 80 + 1, samples.size());
        ASSERT_TRUE(writeSamples(
            { samples.begin() + static_cast<int>(from), samples.begin() + static_cast<int>(to) }));
        from = to;
    }

    const Time end = samples.back().time + 1;
    for (const Time width : levelWidths) {
        const auto model = modelOf(samples, width);
        const int rows = static_cast<int>((end - noon + width - 1) / width);
        const auto history = reader()->history({ seriesOf().at, { noon, end }, rows });
        ASSERT_EQ(history->width, width);
        ASSERT_EQ(history->points.size(), static_cast<int>(model.size()));
        auto expected = model.begin();
        for (const HistoryPoint &point : history->points) {
            EXPECT_EQ(point.time, expected->first);
            EXPECT_EQ(point.lowest, expected->second.lowest);
            EXPECT_EQ(point.highest, expected->second.highest);
            EXPECT_EQ(point.last, expected->second.last);
            EXPECT_EQ(point.count, expected->second.count);
            EXPECT_EQ(static_cast<int>(point.quality), expected->second.quality);
            ++expected;
        }
    }
}

TEST_F(HistoryTest, RowsBeginAtWholeWidths)
{
    EXPECT_EQ(rowBegin(noon, 1'800'000), noon);
    EXPECT_EQ(rowBegin(noon + 1'799'999, 1'800'000), noon);
    EXPECT_EQ(rowBegin(noon + 1'800'000, 1'800'000), noon + 1'800'000);
    EXPECT_EQ(rowBegin(0, 10), 0);
    EXPECT_EQ(rowBegin(-1, 10), -10);
}

TEST_F(HistoryTest, TheLevelIsTheFinestThatHasNoMoreRowsThanAreWanted)
{
    EXPECT_EQ(levelFor(minuteMs, 1000), 0);
    EXPECT_EQ(levelFor(1'000'000, 1000), 0);
    EXPECT_EQ(levelFor(1'000'001, 1000), 1);
    EXPECT_EQ(levelFor(hourMs, 1000), 1);
    EXPECT_EQ(levelFor(dayMs, 1000), 2);
    EXPECT_EQ(levelFor(7 * dayMs, 1000), 3);
    EXPECT_EQ(levelFor(365 * dayMs, 1000), 3);
    EXPECT_EQ(levelFor(std::numeric_limits<Time>::max(), 1000), 3);
}

TEST_F(HistoryTest, ADayHasNoMoreRowsThanAMinuteMayHaveAndShowsItsShortestPeak)
{
    open();
    std::vector<Sample> samples;
    for (Time time = noon; time < noon + dayMs; time += 30'000)
        samples.push_back(sampleOf(time == noon + 7 * hourMs ? 999 : 5, time));

    writeSamples(samples);
    const auto day = reader()->history({ seriesOf().at, { noon, noon + dayMs }, 1000 });

    EXPECT_EQ(day->width, 120'000);
    ASSERT_EQ(day->points.size(), 720);
    EXPECT_EQ(day->points.at(210).highest, 999);
    EXPECT_EQ(day->points.at(210).last, 5);
    EXPECT_EQ(day->points.at(210).count, 4);
    EXPECT_EQ(day->points.at(209).highest, 5);
}

TEST_F(HistoryTest, RowsAreThoseThatTouchTheWindow)
{
    open();
    writeSamples({ sampleOf(1, noon), sampleOf(2, noon + 1000), sampleOf(3, noon + 2000),
                   sampleOf(4, noon + 10'000) });

    EXPECT_EQ(history(noon + 1500, noon + 2000), Texts { "1: 2 to 2, 2 (1)" });
    EXPECT_EQ(history(noon + 1000, noon + 2001),
              (Texts { "1: 2 to 2, 2 (1)", "2: 3 to 3, 3 (1)" }));
    EXPECT_EQ(history(noon + 9000, noon + 10'001, 1),
              (Texts { "0: 1 to 3, 3 (3)", "10: 4 to 4, 4 (1)" }));
}

TEST_F(HistoryTest, RegistersAreKeptApart)
{
    open();
    Sample otherLine = sampleOf(3, noon);
    otherLine.series.at.line = QStringLiteral("b");
    Sample otherStation = sampleOf(4, noon);
    otherStation.series.at.station = 2;
    Sample otherType = sampleOf(5, noon);
    otherType.series.at.regType = QStringLiteral("F");

    writeSamples({ sampleOf(1, noon), sampleOf(2, noon, 1), otherLine, otherStation, otherType });

    EXPECT_EQ(history(noon, noon + 1), Texts { "0: 1 to 1, 1 (1)" });
    EXPECT_EQ(history(noon, noon + 1, 1000, 1), Texts { "0: 2 to 2, 2 (1)" });
    EXPECT_EQ(history(noon, noon + 1, 1000, 2), Texts {});
}

TEST_F(HistoryTest, QuantitiesAreThoseOfTheScalingOfTheirTime)
{
    open();
    Sample before = sampleOf(100, noon);
    before.series.scaling = { 0.5, 1.0, false, 1, QStringLiteral("A") };
    Sample after = sampleOf(100, noon + 1000);
    after.series.scaling = { -2.0, 0.0, true, 0, QStringLiteral("V") };
    after.lowest = -10;

    writeSamples({ before, after });
    const auto found = reader()->history({ seriesOf().at, { noon, noon + 5000 }, 1000 });

    EXPECT_EQ(found->unit, QStringLiteral("V"));
    EXPECT_EQ(history(noon, noon + 5000),
              (Texts { "0: 51 to 51, 51 (1)", "1: -200 to 20, -200 (1)" }));
}

TEST_F(HistoryTest, WhatWasNotRolledUpBeforeAKillIsAfterIt)
{
    open();
    writeSamples({ sampleOf(1, noon), sampleOf(9, noon + 3000), sampleOf(2, noon + 11'000) });
    open();
    const Texts afterwards = history(noon, noon + minuteMs, 10);

    writeSamples({ sampleOf(3, noon + 12'000), sampleOf(4, noon + 60'000) });

    EXPECT_EQ(afterwards, (Texts { "0: 1 to 9, 9 (2)", "10: 2 to 2, 2 (1)" }));
    EXPECT_EQ(history(noon, noon + minuteMs, 10),
              (Texts { "0: 1 to 9, 9 (2)", "10: 2 to 2, 2 (1)", "10: 3 to 3, 3 (1)" }));
    EXPECT_EQ(number("SELECT total(count) FROM history_1"), 4);
}

TEST_F(HistoryTest, RowsOfAnotherRunOfTheClockStayApart)
{
    open();
    Sample again = sampleOf(7, noon);
    again.start = 2;

    writeSamples({ sampleOf(1, noon), sampleOf(2, noon + 50'000), again });

    EXPECT_EQ(history(noon, noon + 10'000, 10), (Texts { "0: 1 to 1, 1 (1)", "0: 7 to 7, 7 (1)" }));
    EXPECT_EQ(history(noon, noon + 120'000, 1), (Texts { "0: 1 to 2, 2 (2)", "0: 7 to 7, 7 (1)" }));
}

TEST_F(HistoryTest, TwoWritersLoseNothingToEachOther)
{
    open();
    Trouble ofOther;
    const auto other = Journal::open(path, {}, &ofOther);
    for (int i = 0; i < 100; ++i) {
        writeSamples({ sampleOf(i, noon + i * 1000) });
        other->write({ {}, { sampleOf(1000 + i, noon + i * 700 / 1000 * 1000, 1) }, {} }, &ofOther);
    }

    EXPECT_EQ(history(noon, noon + 120'000, 1), Texts { "0: 0 to 99, 99 (100)" });
    EXPECT_EQ(history(noon, noon + 120'000, 1, 1), Texts { "0: 1000 to 1099, 1099 (100)" });
    EXPECT_EQ(
        number("SELECT total(count) FROM history_1 WHERE series = 2")
            + number("SELECT total(count) FROM history_0 WHERE series = 2 AND id > (SELECT upto"
                     " FROM rolled WHERE level = 0)"),
        100);
}

TEST_F(HistoryTest, ABatchThatFailedIsRolledUpWhenItIsWritten)
{
    open();
    writeSamples({ sampleOf(1, noon), sampleOf(2, noon + 5000) });
    execute("CREATE TRIGGER stop BEFORE INSERT ON history_0 WHEN NEW.lowest = 4"
            " BEGIN SELECT RAISE(ABORT, 'no'); END");
    const std::vector<Sample> next = { sampleOf(3, noon + 10'000), sampleOf(4, noon + 11'000) };

    EXPECT_FALSE(writeSamples(next));
    EXPECT_EQ(number("SELECT count(*) FROM history_1"), 0);
    execute("DROP TRIGGER stop");
    EXPECT_TRUE(writeSamples(next));

    EXPECT_EQ(number("SELECT total(count) FROM history_1"), 2);
    EXPECT_EQ(history(noon, noon + minuteMs, 10),
              (Texts { "0: 1 to 2, 2 (2)", "10: 3 to 4, 4 (2)" }));
}

TEST_F(HistoryTest, ALevelThatDoesNotReachBackIsReplacedByOneThatDoes)
{
    JournalSettings settings;
    settings.bounds.historyRows = { 10, 1000, 1000, 1000 };
    open(settings);
    std::vector<Sample> samples;
    for (int i = 0; i < 100; ++i)
        samples.push_back(sampleOf(i, noon + i * 1000));
    writeSamples(samples);

    EXPECT_EQ(history(noon + 95'000, noon + 96'000), Texts { "95: 95 to 95, 95 (1)" });
    EXPECT_EQ(history(noon + 20'000, noon + 40'000),
              (Texts { "20: 20 to 29, 29 (10)", "30: 30 to 39, 39 (10)" }));
}

TEST_F(HistoryTest, ALevelThatBeganInTheWindowIsNotReplaced)
{
    open();
    writeSamples({ sampleOf(1, noon), sampleOf(2, noon + 15'000) });

    EXPECT_EQ(history(noon - 60'000, noon + 60'000),
              (Texts { "0: 1 to 1, 1 (1)", "15: 2 to 2, 2 (1)" }));
}

TEST_F(HistoryTest, OfARegisterThatNobodyKnowsThereIsNothing)
{
    open();

    EXPECT_EQ(history(noon, noon + 1000), Texts {});
}
