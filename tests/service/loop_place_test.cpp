// SPDX-License-Identifier: MIT
// The event loop goes on whenever the line waits.
#include "host/service/doorbell.h"
#include "host/service/loop_place.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <poll.h>
#include <unistd.h>

using namespace dx4::host;
using std::chrono::hours;
using std::chrono::milliseconds;

namespace {

constexpr std::size_t stackSize = 256 * 1024;

void turnUntil(const std::function<bool()> &isSo)
{
    while (!isSo())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Whether one turn of the loop finds anything to do.
bool hasWork()
{
    return QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
}

class LoopPlaceTest : public ::testing::Test {
protected:
    LoopPlaceTest()
    {
        while (hasWork()) { }
    }

    LoopPlace place { stackSize };
    Waits &waits = place.waits();
    Doorbell bell { waits };
    bool hasEnded = false;
};

} // namespace

TEST_F(LoopPlaceTest, BeginsWithTheNextTurn)
{
    place.start([this] { hasEnded = true; });
    const bool hadEnded = hasEnded;

    turnUntil([this] { return hasEnded; });
    place.join();

    EXPECT_FALSE(hadEnded);
}

TEST_F(LoopPlaceTest, LeavesTheLoopFreeInAWait)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(0);
    place.start([this] { hasEnded = bell.wait(hours(1)); });

    turnUntil([&ticks] { return ticks == 100; });
    const bool hadEnded = hasEnded;
    bell.ring();
    turnUntil([this] { return hasEnded; });
    place.join();

    EXPECT_FALSE(hadEnded);
}

TEST_F(LoopPlaceTest, CostsNothingInAWait)
{
    place.start([this] { bell.wait(hours(1)); });
    const bool hasBegun = hasWork();

    int turns = 0;
    while (turns < 100 && !hasWork())
        ++turns;

    EXPECT_TRUE(hasBegun);
    EXPECT_EQ(turns, 100);
    bell.ring();
    place.join();
}

TEST_F(LoopPlaceTest, CostsNothingOnceItHasEnded)
{
    place.start([this] { hasEnded = true; });
    turnUntil([this] { return hasEnded; });

    int turns = 0;
    while (turns < 100 && !hasWork())
        ++turns;

    EXPECT_EQ(turns, 100);
    place.join();
}

TEST_F(LoopPlaceTest, WaitsNoShorterThanUntilTheMoment)
{
    const Duration moment = steadyNow() + milliseconds(3);
    Duration woken { 0 };
    place.start([&] {
        waits.until(moment);
        woken = steadyNow();
        hasEnded = true;
    });

    turnUntil([this] { return hasEnded; });
    place.join();

    EXPECT_GE(woken, moment);
}

TEST_F(LoopPlaceTest, AMomentThatIsOverIsNotWaitedFor)
{
    place.start([this] {
        waits.until(steadyNow() - hours(1));
        waits.until(Duration { 0 });
        hasEnded = true;
    });

    hasWork();

    EXPECT_TRUE(hasEnded);
    place.join();
}

TEST_F(LoopPlaceTest, GivesTheEventsThatCameOrNoneAtTheDeadline)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::vector<short> events;
    place.start([&] {
        events.push_back(waits.forEvents(ends[0], POLLIN, steadyNow() + milliseconds(2)));
        events.push_back(waits.forEvents(ends[1], POLLOUT, steadyNow() + hours(1)));
        events.push_back(waits.forEvents(ends[0], POLLIN, steadyNow() + hours(1)));
        close(ends[0]);
    });

    turnUntil([&events] { return events.size() == 2; });
    hasWork();
    close(ends[1]);
    turnUntil([&events] { return events.size() == 3; });
    place.join();

    EXPECT_EQ(events, (std::vector<short> { 0, POLLOUT, POLLHUP }));
}

TEST_F(LoopPlaceTest, WhatHasComeCountsThoughTheLoopIsLate)
{
    bool hasRung = false;
    bell.ring();
    place.start([&] { hasRung = bell.wait(-hours(1)); });

    place.join();

    EXPECT_TRUE(hasRung);
}

TEST_F(LoopPlaceTest, AWaitDoesNotKeepTheDescriptorWatched)
{
    place.start([this] {
        bell.wait(hours(1));
        hasEnded = true;
        waits.until(steadyNow() + hours(1)); // cut short by the end of the test
    });
    hasWork();
    bell.ring();
    turnUntil([this] { return hasEnded; });
    bell.ring();

    int turns = 0;
    while (turns < 100 && !hasWork())
        ++turns;

    EXPECT_EQ(turns, 100);
}

TEST_F(LoopPlaceTest, GivesWayToWhatWaitsInTheLoop)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(0);
    place.start([&] {
        while (ticks < 10)
            waits.giveWay();
        hasEnded = true;
    });

    turnUntil([this] { return hasEnded; });
    place.join();

    EXPECT_GE(ticks, 10);
}

TEST_F(LoopPlaceTest, GivesWayOnceForAllThatWasDoneSinceAWait)
{
    std::string steps;
    place.start([&] {
        bell.wait(hours(1));
        waits.giveWay();
        steps += "a";
        waits.giveWay();
        steps += "b";
        waits.giveWay();
        steps += "c";
    });
    hasWork();
    bell.ring();

    hasWork();
    const std::string first = steps;
    hasWork();
    const std::string second = steps;
    hasWork();

    EXPECT_EQ(first, "a");
    EXPECT_EQ(second, "ab");
    EXPECT_EQ(steps, "abc");
    place.join();
}

TEST_F(LoopPlaceTest, JoinWaitsWithoutTurningTheLoop)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(0);
    std::vector<bool> done;
    place.start([&] {
        waits.giveWay();
        const Duration moment = steadyNow() + milliseconds(2);
        waits.until(moment);
        done.push_back(steadyNow() >= moment);
        done.push_back(bell.wait(milliseconds(2)));
        bell.ring();
        done.push_back(bell.wait(hours(1)));
    });

    place.join();

    EXPECT_EQ(done, (std::vector<bool> { true, false, true }));
    EXPECT_EQ(ticks, 0);
}

TEST_F(LoopPlaceTest, JoinGoesOnWithAWaitThatHasBegun)
{
    place.start([this] { hasEnded = bell.wait(hours(1)); });
    hasWork();

    bell.ring();
    place.join();

    EXPECT_TRUE(hasEnded);
}

TEST_F(LoopPlaceTest, GoesOnInANestedLoop)
{
    place.start([this] { hasEnded = bell.wait(hours(1)); });
    hasWork();
    QTimer::singleShot(0, [this] {
        bell.ring();
        turnUntil([this] { return hasEnded; });
    });

    turnUntil([this] { return hasEnded; });
    place.join();

    EXPECT_TRUE(hasEnded);
}

TEST_F(LoopPlaceTest, WhatTheCodeThrowsLeavesThroughTheLoop)
{
    place.start([] { throw std::runtime_error("out of memory"); });

    EXPECT_THROW(hasWork(), std::runtime_error);
    place.join();
    EXPECT_FALSE(hasWork());
}

TEST_F(LoopPlaceTest, MayEndBeforeItsCodeDoes)
{
    const auto held = std::make_shared<int>(7);
    {
        LoopPlace left(stackSize);
        left.start([&left, held] {
            const auto another = held;
            left.waits().until(steadyNow() + hours(1));
        });
        hasWork();
    }

    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(LoopPlaceTest, TellsHowMuchOfTheStackWasUsed)
{
    const std::size_t before = place.deepestStack();
    place.start([this] { bell.wait(hours(1)); });
    hasWork();

    const std::size_t within = place.deepestStack();
    bell.ring();
    place.join();

    EXPECT_EQ(before, 0U);
    EXPECT_GT(within, 0U);
    EXPECT_LT(within, stackSize);
    EXPECT_EQ(place.deepestStack(), 0U);
}
