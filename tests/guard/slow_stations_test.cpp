// SPDX-License-Identifier: MIT
// Stations that need longer than the response timeout for every reply.
#include "host/exchange/guarded_exchange.h"
#include "late_plant.h"
#include "trial_requests.h"

#include <gtest/gtest.h>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

struct Row {
    const char *name;
    int tries;
    bool buffers;
    LateHabit::Pattern pattern;
};

/// Two blocks of four registers, asked in turn with so many tries each; the timeout is 100 ms.
class SlowStations : public ::testing::TestWithParam<Row> {
protected:
    static LineSettings settings()
    {
        LineSettings settings;
        settings.speed = 38400;
        settings.responseTimeout = milliseconds(100);
        return settings;
    }

    /// Asks for one block until it is answered or its tries are used up.
    void ask(int address)
    {
        for (int tries = 0; tries < GetParam().tries; ++tries) {
            const Reply reply = guard.run(readOf(1, address, 4));
            if (reply.bytes.isEmpty())
                continue;
            ++answers;
            wrong += isOf(address, reply.bytes) ? 0 : 1;
            return;
        }
        ++givenUp;
    }

    bool isOf(int address, const QByteArray &reply) const
    {
        bool isRight = reply.size() == 13;
        for (int i = 0; isRight && i < 4; ++i)
            isRight =
                static_cast<unsigned char>(reply.at(4 + 2 * i)) == plant.ordinalOf(1, address + i);
        return isRight;
    }

    SeededChance chance { 20261121 };
    LatePlant plant { settings(), LineHabit(), chance };
    GuardedExchange guard { plant };
    int answers = 0;
    int wrong = 0;
    int givenUp = 0;
};

} // namespace

TEST_P(SlowStations, AreAskedForTheirOwnValuesAndSoonWithoutATryInVain)
{
    LateHabit habit;
    habit.pattern = GetParam().pattern;
    habit.buffers = GetParam().buffers;
    habit.quickest = milliseconds(155);
    habit.slowest = milliseconds(175);
    plant.addStation(1, habit);
    for (int i = 0; i < 50; ++i)
        ask(i % 2 == 0 ? 0xD000 : 0xD004);
    const int wrongAtFirst = wrong;
    answers = wrong = givenUp = 0;

    for (int i = 0; i < 200; ++i)
        ask(i % 2 == 0 ? 0xD000 : 0xD004);

    EXPECT_EQ(wrongAtFirst, 0);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(answers, 200);
    EXPECT_EQ(givenUp, 0);
    EXPECT_GE(guard.timeoutOf(1), milliseconds(175));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SlowStations,
    ::testing::Values(Row { "TwoTriesBuffering", 2, true, LateHabit::Pattern::Random },
                      Row { "ThreeTriesBuffering", 3, true, LateHabit::Pattern::Random },
                      Row { "TwoTriesDropping", 2, false, LateHabit::Pattern::Random },
                      Row { "ThreeTriesDropping", 3, false, LateHabit::Pattern::Random },
                      Row { "TwoTriesDriftingBuffering", 2, true, LateHabit::Pattern::Drifting },
                      Row { "ThreeTriesDriftingDropping", 3, false, LateHabit::Pattern::Drifting }),
    [](const auto &row) { return std::string(row.param.name); });

namespace {

/// Answers of 60 tries at two blocks in turn, three tries each; -1 when one was another block's.
int answersAt(Duration lateness, bool buffers)
{
    LineSettings settings;
    settings.responseTimeout = milliseconds(100);
    BytesChance nothingHappens(nullptr, 0);
    LatePlant plant(settings, LineHabit(), nothingHappens);
    GuardedExchange guard(plant);
    LateHabit habit;
    habit.buffers = buffers;
    habit.slowest = lateness;
    plant.addStation(1, habit);
    int answers = 0;
    for (int i = 0; i < 60; ++i) {
        const int address = i / 3 % 2 == 0 ? 0xD000 : 0xD004;
        const Reply reply = guard.run(readOf(1, address, 4));
        if (reply.bytes.isEmpty())
            continue;
        if (static_cast<unsigned char>(reply.bytes.at(4)) != plant.ordinalOf(1, address))
            return -1;
        ++answers;
    }
    return answers;
}

} // namespace

// A lateness at which each reply falls where nobody listens would last for good.
TEST(SlowStation, OfAnyConstantLatenessIsHeard)
{
    for (int lateness = 100; lateness <= 500; ++lateness) {
        EXPECT_GE(answersAt(milliseconds(lateness), false), 30) << lateness << " ms, drops";
        EXPECT_GE(answersAt(milliseconds(lateness), true), 30) << lateness << " ms, buffers";
    }
}
