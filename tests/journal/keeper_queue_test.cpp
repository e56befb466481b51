// SPDX-License-Identifier: MIT
// What waits is bounded, counted and in order.
#include "journal/keeper_queue.h"
#include "journal_fixture.h"

using namespace dx4::journal;

namespace {

class KeeperQueueTest : public ::testing::Test {
protected:
    void put(const char *text) { queue.put(eventOf(text)); }
    void put(int value, Quality quality = Quality::Good)
    {
        queue.put(seriesOf(), value, quality, 1);
    }

    /// "text @ run, time since noon" of each.
    static Texts told(const std::vector<Event> &events)
    {
        Texts texts;
        for (const Event &event : events)
            texts.push_back(QStringLiteral("%1 @ %2, %3")
                                .arg(event.text)
                                .arg(event.start)
                                .arg(event.time - noon)
                                .toStdString());
        return texts;
    }

    /// "run, time since noon: lowest to highest, last (count)" of each.
    static Texts told(const std::vector<Sample> &samples)
    {
        Texts texts;
        for (const Sample &sample : samples)
            texts.push_back(QStringLiteral("%1, %2: %3 to %4, %5 (%6)")
                                .arg(sample.start)
                                .arg(sample.time - noon)
                                .arg(sample.lowest)
                                .arg(sample.highest)
                                .arg(sample.last)
                                .arg(sample.count)
                                .toStdString());
        return texts;
    }

    Time now = noon;
    KeeperQueue queue { [this] { return now; }, 3, 3 };
};

} // namespace

TEST_F(KeeperQueueTest, EventsComeInOrderWithTheirTimes)
{
    put("one");
    now += 5;
    put("two");
    put("three");

    const Batch first = queue.takeEvents(2);
    const Batch second = queue.takeEvents(2);

    EXPECT_EQ(told(first.events), (Texts { "one @ 1, 0", "two @ 1, 5" }));
    EXPECT_EQ(told(second.events), Texts { "three @ 1, 5" });
    EXPECT_TRUE(queue.takeEvents(2).isEmpty());
}

TEST_F(KeeperQueueTest, AClockThatIsSetBackBeginsAnotherRun)
{
    put("before");
    now -= 2001;
    put("after");
    now += 1;
    put("later");

    EXPECT_EQ(told(queue.takeEvents(9).events),
              (Texts { "before @ 1, 0", "after @ 2, -2001", "later @ 2, -2000" }));
}

TEST_F(KeeperQueueTest, AClockThatIsSetBackALittleStandsStill)
{
    put("before");
    now -= 2000;
    put("after");
    now += 2001;
    put("later");

    EXPECT_EQ(told(queue.takeEvents(9).events),
              (Texts { "before @ 1, 0", "after @ 1, 0", "later @ 1, 1" }));
}

TEST_F(KeeperQueueTest, ValuesOfOneSecondAreOneSample)
{
    put(5);
    now += 999;
    put(-3);
    put(2, Quality::Stale);
    put(4);
    now += 1;
    put(7);

    const Batch ended = queue.takeSamples(9, false);
    const Batch last = queue.takeSamples(9, true);

    EXPECT_EQ(told(ended.samples), Texts { "1, 0: -3 to 5, 4 (4)" });
    EXPECT_EQ(ended.samples.front().quality, Quality::Stale);
    EXPECT_EQ(told(last.samples), Texts { "1, 1000: 7 to 7, 7 (1)" });
    EXPECT_EQ(last.samples.front().quality, Quality::Good);
}

TEST_F(KeeperQueueTest, ASecondIsOverWhenTheClockSaysSo)
{
    put(5);
    now += 999;
    const bool isEarly = queue.takeSamples(9, false).isEmpty();
    now += 1;

    EXPECT_TRUE(isEarly);
    EXPECT_EQ(told(queue.takeSamples(9, false).samples), Texts { "1, 0: 5 to 5, 5 (1)" });
}

TEST_F(KeeperQueueTest, ASecondIsOverWhenTheClockIsSetBack)
{
    put(5);
    now -= 3'600'000;
    put(6);

    EXPECT_EQ(told(queue.takeSamples(9, true).samples),
              (Texts { "1, 0: 5 to 5, 5 (1)", "2, -3600000: 6 to 6, 6 (1)" }));
}

TEST_F(KeeperQueueTest, WhatIsAsBeforeIsNoChange)
{
    queue.put(seriesOf(), 5, Quality::Good, 0);

    EXPECT_EQ(told(queue.takeSamples(9, true).samples), Texts { "1, 0: 5 to 5, 5 (0)" });
}

TEST_F(KeeperQueueTest, BeyondItsBoundTheOldestEventsGoAndAreCounted)
{
    put("one");
    put("two");
    put("three");
    const Losses before = queue.lostSoFar();
    now += 7;
    put("four");
    put("five");

    const Losses losses = queue.takeLosses();
    EXPECT_EQ(before.events, 0);
    EXPECT_EQ(losses.events, 2);
    EXPECT_EQ(losses.values, 0);
    EXPECT_EQ(losses.first, noon);
    EXPECT_EQ(told(queue.takeEvents(9).events),
              (Texts { "three @ 1, 0", "four @ 1, 7", "five @ 1, 7" }));
}

TEST_F(KeeperQueueTest, BeyondTheirBoundTheOldestSamplesGoAndTheirValuesAreCounted)
{
    put("kept");
    now += 1000;
    put(1);
    put(1);
    for (int i = 2; i <= 5; ++i) {
        now += 1000;
        put(i);
    }

    const Losses atTheBound = queue.takeLosses();
    now += 1000;
    put(6);

    EXPECT_EQ(atTheBound.values, 2);
    EXPECT_EQ(atTheBound.first, noon + 1000);
    EXPECT_EQ(queue.takeLosses().values, 1);
    EXPECT_EQ(queue.takeLosses().values, 0);
    EXPECT_EQ(queue.lostSoFar().values, 3);
    EXPECT_EQ(queue.lostSoFar().events, 0);
    EXPECT_EQ(queue.lostSoFar().first, noon + 1000);
    EXPECT_EQ(told(queue.takeEvents(9).events), Texts { "kept @ 1, 0" });
    EXPECT_EQ(
        told(queue.takeSamples(9, false).samples),
        (Texts { "1, 3000: 3 to 3, 3 (1)", "1, 4000: 4 to 4, 4 (1)", "1, 5000: 5 to 5, 5 (1)" }));
}

TEST_F(KeeperQueueTest, WritesAreAddedUpAndNeverGo)
{
    const RegisterKey key { QStringLiteral("a"), 1, QStringLiteral("F"), 5 };
    for (int i = 0; i < 10; ++i) {
        ++now;
        queue.addWrite(key);
    }

    const Batch batch = queue.takeEvents(1);

    ASSERT_EQ(batch.wear.size(), 1U);
    EXPECT_EQ(batch.wear.at(key).at, key);
    EXPECT_EQ(batch.wear.at(key).writes, 10);
    EXPECT_EQ(batch.wear.at(key).last, noon + 10);
    EXPECT_FALSE(batch.isEmpty());
    EXPECT_TRUE(queue.takeEvents(1).isEmpty());
}

TEST_F(KeeperQueueTest, CountsWhatWaits)
{
    put("one");
    put(1);
    now += 1000;
    put(2);

    EXPECT_EQ(queue.waiting(), 3);
}
