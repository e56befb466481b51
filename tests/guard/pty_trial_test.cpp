// SPDX-License-Identifier: MIT
// Late stations behind pseudo-terminals, in real time: what is believed is so.
#include "pty_plant.h"
#include "trial.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

using dx4::host::Duration;

namespace {

constexpr int linesAtOnce = 8; // they wait, for the most part
constexpr int stepsOfOnePlant = 100;
constexpr unsigned besidesPerMille = 30;

long fromEnvironment(const char *name, long usual)
{
    const char *text = std::getenv(name);
    return text ? std::atol(text) : usual;
}

Duration now()
{
    return std::chrono::duration_cast<Duration>(
        std::chrono::steady_clock::now().time_since_epoch());
}

/// One plant after the other on one line.
struct Played {
    TrialCounts counts;
    std::string wrong; ///< of the first plant that had something wrong

    /// At least one plant, and none after `end`. The seed decides what a plant is like, but the
    /// machine decides when its threads run: it is no seed to play the same once more.
    void play(std::uint64_t seed, Duration end)
    {
        do {
            SeededChance chance(seed);
            SeededChance chanceOfStations(~seed);
            const LineChoice line = quickLine(chance);
            PtyPlant plant(line.settings, line.habit, chanceOfStations);
            Trial trial(chance, line, plant);
            trial.doBesides(besidesPerMille);
            for (int i = 0; i < stepsOfOnePlant && (i == 0 || now() < end); ++i)
                trial.step();
            counts.add(trial.counts());
            if (trial.counts().wrong() > 0 && wrong.empty())
                wrong = trial.text();
            seed += linesAtOnce;
        } while (now() < end && wrong.empty());
    }
};

/// Qt's serial port complains on a thread that has no application or event loop.
class PtyTrial : public ::testing::Test {
protected:
    int count = 1;
    char program[5] = "test";
    char *arguments[2] = { program, nullptr };
    QCoreApplication application { count, arguments };
};

} // namespace

TEST_F(PtyTrial, WhatIsBelievedIsSoInRealTime)
{
    const Duration end = now() + std::chrono::seconds(fromEnvironment("KORVANE_PTY_SECONDS", 3));
    const auto seed = static_cast<std::uint64_t>(fromEnvironment("KORVANE_SEED", 20261121));
    std::vector<Played> lines(linesAtOnce);
    std::vector<std::unique_ptr<QThread>> threads;

    for (std::size_t i = 0; i < lines.size(); ++i) {
        Played &line = lines[i];
        threads.emplace_back(QThread::create([&line, end, i, seed] { line.play(seed + i, end); }));
        threads.back()->start();
    }
    for (const auto &thread : threads)
        thread->wait();

    TrialCounts total;
    for (const Played &line : lines) {
        EXPECT_EQ(line.wrong, "");
        total.add(line.counts);
    }
    std::printf("%ld steps: %ld reads, %ld writes and %ld refusals believed, %ld withheld, %ld "
                "late replies\n",
                total.steps, total.goodReads, total.goodWrites, total.refusals, total.withheld,
                total.late);
    EXPECT_GT(total.goodReads, 0);
    EXPECT_GT(total.goodWrites, 0);
}
