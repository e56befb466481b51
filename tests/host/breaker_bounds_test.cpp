// SPDX-License-Identifier: MIT
// How long the dead keep the living waiting at most, and how long one that returns has to wait.
#include "runtime_fixture.h"

#include <algorithm>
#include <utility>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

LineSettings oneSecondTimeout()
{
    LineSettings settings;
    settings.speed = 19200;
    settings.responseTimeout = seconds(1);
    return settings;
}

/// Stations 1 to `count` with ten registers each.
Plan planOfStations(int count)
{
    QVector<PlanEntry> entries;
    for (int station = 1; station <= count; ++station)
        entries.append({ station, QStringLiteral("D 0-9") });
    return planOf(entries);
}

/// Steps for a while; gives the longest time in which station 1 was not read.
Duration longestUnread(RuntimeUnderTest &under, Duration span)
{
    const BlockKey block { 1, QStringLiteral("D"), 0, 10, false };
    const Duration end = under.stations.line.now() + span;
    Duration lastRead = under.stations.line.now();
    quint64 reads = under.host.counters().block(block).good;
    Duration longest { 0 };
    under.host.run([&] {
        const Duration now = under.stations.line.now();
        const quint64 after = under.host.counters().block(block).good;
        longest = std::max(longest, now - lastRead);
        if (after > std::exchange(reads, after))
            lastRead = now;
        return now >= end;
    });
    return longest;
}

} // namespace

TEST(DeadAmongEight, OneThatWasAliveKeepsTheOthersWaitingForLessThanOneAndAHalfSeconds)
{
    RuntimeUnderTest under({}, oneSecondTimeout());
    under.host.setPlan(planOfStations(8));
    under.runFor(seconds(5));
    under.stations.dead = { 4 };

    const Duration longest = longestUnread(under, seconds(200));

    RecordProperty("longestMs", static_cast<int>(longest / milliseconds(1)));
    EXPECT_LT(longest, milliseconds(1500));
    EXPECT_TRUE(under.host.isLeftAlone(4));
}

TEST(DeadAmongEight, SevenThatWereNeverHeardKeepTheOneWaitingForLessThanOneAndAHalfSeconds)
{
    RuntimeUnderTest under({}, oneSecondTimeout());
    under.host.setPlan(planOfStations(8));
    under.stations.dead = { 2, 3, 4, 5, 6, 7, 8 };

    const Duration longest = longestUnread(under, seconds(200));

    RecordProperty("longestMs", static_cast<int>(longest / milliseconds(1)));
    EXPECT_LT(longest, milliseconds(1500));
}

TEST(DeadAmongEight, SevenThatDieAtOnceKeepTheOneWaitingOnceForTheirTimeouts)
{
    RuntimeUnderTest under({}, oneSecondTimeout());
    under.host.setPlan(planOfStations(8));
    under.runFor(seconds(5));
    under.stations.dead = { 2, 3, 4, 5, 6, 7, 8 };

    const Duration longest = longestUnread(under, seconds(20));
    const Duration afterwards = longestUnread(under, seconds(200));

    RecordProperty("longestMs", static_cast<int>(longest / milliseconds(1)));
    RecordProperty("afterwardsMs", static_cast<int>(afterwards / milliseconds(1)));
    EXPECT_LT(longest, seconds(9));
    EXPECT_LT(afterwards, milliseconds(1500));
}

TEST(DeadAmongEight, ManyTriesMakeTheWaitNoLonger)
{
    RuntimeSettings settings;
    settings.link.retryLimit = 100;
    RuntimeUnderTest under(settings, oneSecondTimeout());
    under.host.setPlan(planOfStations(8));
    under.runFor(seconds(5));
    under.stations.dead = { 4 };

    const Duration longest = longestUnread(under, seconds(200));

    EXPECT_LT(longest, milliseconds(1800));
}

TEST(DeadAmongEight, ProbesUseNoMoreThanAQuarterOfTheLineWhereSevenAreDead)
{
    RuntimeUnderTest under({}, oneSecondTimeout());
    under.host.setPlan(planOfStations(8));
    under.stations.dead = { 2, 3, 4, 5, 6, 7, 8 };
    under.runFor(seconds(60));
    const Duration before = under.host.counters().total().busy;
    const Duration living = under.host.counters().station(1).busy;

    under.runFor(seconds(200));

    const Duration probes = under.host.counters().total().busy - before
        - (under.host.counters().station(1).busy - living);
    EXPECT_LT(probes, seconds(50));
    EXPECT_GT(probes, seconds(20));
}

namespace {

/// A station that is away and returns, among others that answer at once.
struct Return {
    int others = 0; ///< stations on the line besides
    bool wasKnown = false; ///< it answered in the same time before it went away
    bool isHalfDuplex = false; ///< a late reply is lost where a request goes out meanwhile
    Duration answer { 0 };
    Duration after { 0 }; ///< from the moment at which it is left alone

    /// Time from its return to its first answer.
    Duration run(const Plan &plan) const
    {
        const int station = others + 1;
        RuntimeUnderTest under({}, oneSecondTimeout());
        under.host.setPlan(plan);
        under.stations.slow[station] = answer;
        if (isHalfDuplex)
            under.stations.line.letFramesCollide();
        if (wasKnown)
            under.runFor(seconds(1));
        under.stations.dead = { station };
        under.host.run([&] { return under.host.isLeftAlone(station); });
        under.runFor(after);
        under.stations.dead.clear();
        const Duration returned = under.stations.line.now();
        under.host.run([&] {
            return !under.host.isLeftAlone(station)
                || under.stations.line.now() > returned + seconds(30);
        });
        return under.stations.line.now() - returned;
    }
};

class Returns : public ::testing::TestWithParam<int> { };

} // namespace

TEST_P(Returns, WithinTenSecondsWhateverTheStationTakesUpTo225Milliseconds)
{
    const Plan plan = planOfStations(GetParam() + 1);
    Duration longest { 0 };
    for (const auto &[wasKnown, isHalfDuplex] :
         { std::pair(false, false), std::pair(false, true), std::pair(true, true) }) {
        for (int answer : { 1, 51, 119, 201, 225 }) {
            for (int after = 0; after < 26000; after += 1700) {
                const Return trial { GetParam(), wasKnown, isHalfDuplex, milliseconds(answer),
                                     milliseconds(after) };
                const Duration taken = trial.run(plan);
                ASSERT_LT(taken, seconds(10))
                    << "answers in " << answer << " ms, returns " << after
                    << " ms after it was left alone" << (wasKnown ? "" : ", never heard before")
                    << (isHalfDuplex ? ", collisions" : "");
                longest = std::max(longest, taken);
            }
        }
    }
    RecordProperty("longestMs", static_cast<int>(longest / milliseconds(1)));
}

INSTANTIATE_TEST_SUITE_P(Breaker, Returns, ::testing::Values(0, 1, 7),
                         [](const auto &row) { return "WithOthers" + std::to_string(row.param); });
