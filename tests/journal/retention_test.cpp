// SPDX-License-Identifier: MIT
// A journal stays within its bounds, and the oldest goes first.
#include "journal/history.h"
#include "journal_fixture.h"

#include <QFileInfo>

using namespace dx4::journal;

namespace {

using Retention = JournalTest;

JournalSettings boundedTo(int eventRows)
{
    JournalSettings settings;
    settings.bounds.eventRows = eventRows;
    return settings;
}

} // namespace

TEST_F(Retention, OfEachKindTheNewestEventsStay)
{
    open(boundedTo(3));

    writeEvents({ eventOf("alarm 1", noon, EventKind::Alarm) });
    writeEvents({ eventOf("1"), eventOf("2"), eventOf("3") });
    const Texts atTheBound = texts();
    writeEvents({ eventOf("4"), eventOf("5") });

    EXPECT_EQ(atTheBound, (Texts { "alarm 1", "1", "2", "3" }));
    EXPECT_EQ(texts(), (Texts { "alarm 1", "3", "4", "5" }));
}

TEST_F(Retention, ABoundOfNothingLeavesTheNewestSoThatNoIdIsUsedTwice)
{
    open(boundedTo(0));

    writeEvents({ eventOf("1"), eventOf("2") });
    writeEvents({ eventOf("3") });

    EXPECT_EQ(texts(), Texts { "3" });
    EXPECT_EQ(events().constFirst().id, 3);
}

TEST_F(Retention, EachLevelHasItsRows)
{
    JournalSettings settings;
    settings.bounds.historyRows = { 5, 4, 3, 2 };
    open(settings);

    std::vector<Sample> samples;
    for (int i = 0; i < 10'000; ++i)
        samples.push_back(sampleOf(i, noon + i * 1000));
    writeSamples(samples);

    EXPECT_EQ(number("SELECT count(*) FROM history_0"), 5);
    EXPECT_EQ(number("SELECT count(*) FROM history_1"), 4);
    EXPECT_EQ(number("SELECT count(*) FROM history_2"), 3);
    EXPECT_EQ(number("SELECT count(*) FROM history_3"), 2);
    EXPECT_EQ(number("SELECT max(last) FROM history_0"), 9999);
    EXPECT_EQ(number("SELECT min(last) FROM history_0"), 9995);
}

TEST_F(Retention, NoRowGoesBeforeTheNextLevelHasIt)
{
    JournalSettings settings;
    settings.bounds.historyRows = { 1, 1000, 1000, 1000 };
    open(settings);

    for (int i = 0; i < 30; ++i)
        writeSamples({ sampleOf(i == 13 ? 999 : i, noon + i * 1000) });

    EXPECT_EQ(number("SELECT count(*) FROM history_0"), 1);
    EXPECT_EQ(history(noon, noon + 30'000, 3),
              (Texts { "0: 0 to 9, 9 (10)", "10: 10 to 999, 19 (10)", "20: 20 to 29, 29 (10)" }));
}

TEST_F(Retention, TheFileStaysWithinItsBytesAndTheFinestHistoryGoesFirst)
{
    JournalSettings settings;
    settings.bounds.bytes = 2 << 20;
    open(settings);
    writeEvents({ eventOf("kept") });

    Time time = noon;
    for (int batch = 0; batch < 40; ++batch) {
        std::vector<Sample> samples;
        for (int i = 0; i < 2000; ++i)
            samples.push_back(sampleOf(i, time += 1000));
        ASSERT_TRUE(writeSamples(samples));
    }
    journal.reset();

    EXPECT_LE(QFileInfo(path).size(), (2 << 20) + (256 << 10));
    EXPECT_GE(QFileInfo(path).size(), 1 << 20);
    EXPECT_EQ(texts(), Texts { "kept" });
    EXPECT_EQ(number("SELECT max(time) FROM history_0"), time);
    EXPECT_GT(number("SELECT min(time) FROM history_0"), noon + 40'000'000);
    EXPECT_EQ(number("SELECT total(count) FROM history_3")
                  + number("SELECT total(count) FROM history_2 WHERE id > (SELECT upto FROM rolled"
                           " WHERE level = 2)")
                  + number("SELECT total(count) FROM history_1 WHERE id > (SELECT upto FROM rolled"
                           " WHERE level = 1)")
                  + number("SELECT total(count) FROM history_0 WHERE id > (SELECT upto FROM rolled"
                           " WHERE level = 0)"),
              80'000);
}

TEST_F(Retention, EventsGoWhereThereIsNoHistoryLeftToGo)
{
    JournalSettings settings;
    settings.bounds.bytes = 1; // that is, 1 MiB
    open(settings);
    writeSamples({ sampleOf(1, noon), sampleOf(2, noon + 1000) });
    Event event = eventOf("");
    event.text = QString(2000, QLatin1Char('x'));

    EXPECT_TRUE(writeEvents(std::vector<Event>(1000, event)));

    EXPECT_LE(number("SELECT (SELECT page_count FROM pragma_page_count)"
                     " - (SELECT freelist_count FROM pragma_freelist_count)"),
              256);
    EXPECT_EQ(events().constFirst().id, 1000);
    EXPECT_GT(number("SELECT count(*) FROM events"), 200);
    EXPECT_EQ(number("SELECT max(id) - min(id) + 1 - count(*) FROM events"), 0);
}

TEST_F(Retention, OnlyTheNewestStartsAreListed)
{
    open();
    std::vector<Event> restarts;
    for (int run = 1; run <= 10'005; ++run) {
        restarts.push_back(eventOf("x"));
        restarts.back().start = run;
    }

    EXPECT_TRUE(writeEvents(restarts));

    EXPECT_EQ(number("SELECT count(*) FROM starts"), 10'000);
    EXPECT_EQ(number("SELECT max(id) FROM starts"), 10'005);
}
