// SPDX-License-Identifier: MIT
// Random plants with late stations: what is believed is so, and the host keeps its pace.
#include "told_exchange.h"
#include "trial.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

constexpr long stepsOfOnePlant = 400;
constexpr double leastPace = 0.8;

long fromEnvironment(const char *name, long usual)
{
    const char *text = std::getenv(name);
    return text ? std::atol(text) : usual;
}

long steps()
{
    return fromEnvironment("KORVANE_GUARD_STEPS", 100000);
}

std::uint64_t seed()
{
    return static_cast<std::uint64_t>(fromEnvironment("KORVANE_SEED", 20261121));
}

/// Answers that were believed, in a second of the line's time.
double paceOf(const TrialCounts &counts)
{
    const double seconds = static_cast<double>(counts.time.count()) / 1e6;
    return static_cast<double>(counts.goodReads + counts.goodWrites) / seconds;
}

/// Plays as many steps as are wanted, each plant with the guard and with what it is compared with.
struct Pair {
    TrialCounts guarded;
    TrialCounts told;

    explicit Pair(Trial::Stations stations)
    {
        for (std::uint64_t plant = 0; guarded.steps < steps(); ++plant) {
            SeededChance chance(seed() + plant);
            VirtualTrial trial(chance, stations);
            trial.steps(stepsOfOnePlant);
            guarded.add(trial.counts());
            SeededChance same(seed() + plant);
            VirtualTrial compared(same, stations);
            ToldExchange exchange(compared.plant);
            compared.useExchange(exchange);
            compared.steps(stepsOfOnePlant);
            told.add(compared.counts());
        }
    }
};

} // namespace

TEST(BelievedReplies, AreOfTheirOwnRequestInAnyPlant)
{
    TrialCounts total;
    for (std::uint64_t plant = 0; total.steps < steps(); ++plant) {
        SeededChance chance(seed() + plant);
        VirtualTrial trial(chance);

        trial.steps(stepsOfOnePlant);

        ASSERT_EQ(trial.counts().wrong(), 0) << "KORVANE_SEED=" << seed() + plant << '\n'
                                             << trial.text();
        total.add(trial.counts());
    }
    std::printf(
        "%ld steps: %ld reads, %ld writes and %ld refusals believed, %ld withheld, %ld late "
        "replies\n",
        total.steps, total.goodReads, total.goodWrites, total.refusals, total.withheld, total.late);
    EXPECT_GT(total.goodReads, total.steps / 4);
    EXPECT_GT(total.goodWrites, 0);
    EXPECT_GT(total.late, 0);
}

// What takes whatever has the right length is wrong in these plants, so that being right is no
// matter of course.
TEST(BelievedReplies, AreNotThoseOfAHostThatTakesWhatComes)
{
    const Pair pair(Trial::Stations::Any);

    EXPECT_GT(pair.told.wrongValues, 0);
    EXPECT_GT(pair.told.falseConfirmations, 0);
}

TEST(BelievedReplies, ComeAtFourFifthsOfThePaceOfAHostThatWasToldHowSlowEachStationIs)
{
    const Pair pair(Trial::Stations::Any);

    EXPECT_GT(paceOf(pair.guarded), leastPace * paceOf(pair.told));
}

TEST(BelievedReplies, ComeAtThatPaceWhereEveryStationIsInTime)
{
    const Pair pair(Trial::Stations::InTime);

    EXPECT_GT(paceOf(pair.guarded), leastPace * paceOf(pair.told));
}
