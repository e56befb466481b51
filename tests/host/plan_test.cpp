// SPDX-License-Identifier: MIT
// Plans: every wanted register is read from its own station, or the plan is refused with a reason.
#include "host/plan.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

using namespace dx4::host;
using Texts = std::vector<std::string>;

namespace {

std::unique_ptr<Plugin> privateCopy()
{
    return Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy);
}

LinkSettings blocksOf(int registers)
{
    LinkSettings settings;
    settings.blockSize = registers;
    return settings;
}

/// Blocks as "station type address count".
Texts blockTexts(const Plan &plan)
{
    Texts texts;
    for (const KEY_ADDRESS &block : plan.blocks)
        texts.push_back(std::to_string(block.station) + ' ' + block.regType.toStdString() + ' '
                        + std::to_string(block.address) + ' ' + std::to_string(block.count));
    return texts;
}

Texts planned(const QVector<PlanEntry> &entries, int blockSize = 16)
{
    Planner planner(privateCopy(), blocksOf(blockSize));
    QString error;
    const auto plan = planner.make(entries, &error);
    return plan ? blockTexts(*plan) : Texts { error.toStdString() };
}

} // namespace

TEST(Plan, TouchingWishesBecomeOneBlock)
{
    EXPECT_EQ(planned({ { 1, QStringLiteral("D 2-3") }, { 1, QStringLiteral("D 0-1") } }),
              Texts { "1 D 0 4" });
}

TEST(Plan, AWishInsideALongerOneDoesNotShortenIt)
{
    EXPECT_EQ(planned({ { 1, QStringLiteral("D 0-9") }, { 1, QStringLiteral("D 2") } }),
              Texts { "1 D 0 10" });
}

TEST(Plan, StationsThatWouldBeJoinedAreKeptApartByStatusAndFault)
{
    EXPECT_EQ(planned({ { 1, QStringLiteral("D 5") }, { 2, QStringLiteral("D 3") } }),
              (Texts { "1 D 5 1", "1 SW 0 1", "1 FU 0 1", "2 D 3 1", "2 SW 0 1", "2 FU 0 1" }));
}

TEST(Plan, StationsThatAreApartAnywayGetNoSeparators)
{
    EXPECT_EQ(planned({ { 1, QStringLiteral("D 5") }, { 2, QStringLiteral("D 7") } }),
              (Texts { "1 D 5 1", "2 D 7 1" }));
}

TEST(Plan, GroupsStayApartAndBlocksKeepTheirSize)
{
    EXPECT_EQ(planned({ { 1, QStringLiteral("F 0.16-0.18") },
                        { 1, QStringLiteral("F 1.0-1.4") },
                        { 1, QStringLiteral("F c.13") } },
                      4),
              (Texts { "1 F 16 3", "1 F 256 4", "1 F 260 1", "1 F 2573 1" }));
}

TEST(Plan, CountsTheTimeOfARotation)
{
    Planner planner(privateCopy(), blocksOf(16));
    const auto plan = planner.make({ { 1, QStringLiteral("D 0-3") } }, nullptr);
    LineSettings line;
    line.speed = 10000;

    ASSERT_TRUE(plan);
    EXPECT_EQ(cycleTime(*plan, line, std::chrono::milliseconds(2)).count(),
              3500 + 2000 + (8 + 13) * 1000);
    EXPECT_EQ(describe(*plan, line),
              QStringList { QStringLiteral("station 1  D 0 (0xD000)  4 registers  21.0 ms") });
}

struct RefusalRow {
    const char *name;
    int station;
    const char *text;
    int blockSize;
    const char *error;
};

class PlanRefusal : public ::testing::TestWithParam<RefusalRow> { };

TEST_P(PlanRefusal, NamesTheEntryTheFaultAndTheRemedy)
{
    const RefusalRow &row = GetParam();

    const Texts result = planned({ { row.station, QString::fromLatin1(row.text) } }, row.blockSize);

    EXPECT_EQ(result, Texts { row.error });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PlanRefusal,
    ::testing::Values(
        RefusalRow { "UnknownType", 1, "X 1", 16,
                     "station 1, \"X 1\": no register type \"X\"; types are F, D, CW, FRE, SW, "
                     "FU" },
        RefusalRow { "PastTheEndOfGroupC", 1, "F c.14", 16,
                     "station 1, \"F c.14\": out of range; the group reaches from c.0 to c.13" },
        RefusalRow { "PastTheMonitors", 2, "D 30-32", 16,
                     "station 2, \"D 30-32\": out of range; D reaches from 0 to 31" },
        RefusalRow { "WriteOnly", 1, "CW", 16,
                     "station 1, \"CW\": CW can only be written; F, D, SW and FU can be read" },
        RefusalRow { "GroupThatTheDriversCheckLetsPass", 1, "F d.5", 16,
                     "station 1, \"F d.5\": not an address; write \"F 8.2\" or \"F 8.2-8.5\", "
                     "with groups 0 to 9 and c" },
        RefusalRow { "AcrossGroups", 1, "F 0.5-1.2", 16,
                     "station 1, \"F 0.5-1.2\": a run of parameters stays within one group" },
        RefusalRow { "Backwards", 1, "D 5-2", 16,
                     "station 1, \"D 5-2\": the run ends before it begins" },
        RefusalRow { "Station0", 0, "D 5", 16,
                     "station 0, \"D 5\": no station 0; stations are 1 to 247" },
        RefusalRow { "Station248", 248, "D 5", 16,
                     "station 248, \"D 5\": no station 248; stations are 1 to 247" },
        RefusalRow { "BlockSize0", 1, "D 5", 0, "block size 0; it can be 1 to 123" },
        RefusalRow { "BlockSize124", 1, "D 5", 124, "block size 124; it can be 1 to 123" }),
    [](const auto &tested) { return tested.param.name; });

namespace {

using Key = std::tuple<int, std::string, int>;

struct RandomWishes {
    QVector<PlanEntry> entries;
    std::set<Key> registers;
};

/// Configurations to draw: KORVANE_PLAN_ROUNDS, or 300.
int roundsFromEnvironment()
{
    bool isNumber = false;
    const int rounds = qEnvironmentVariableIntValue("KORVANE_PLAN_ROUNDS", &isNumber);
    return isNumber && rounds > 0 ? rounds : 300;
}

/// Wishes of 1 to 31 stations, with overlaps, contained runs and equal ranges on neighbours.
RandomWishes randomWishes(std::mt19937 &random)
{
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    RandomWishes wishes;
    const int stations = 1 + below(31);
    for (int station = 1; station <= stations; ++station) {
        for (int n = below(5); n >= 0; --n) {
            const bool isParameter = below(2) == 0;
            const int group = below(10);
            const int first = below(isParameter ? 9 : 32);
            const int last = first + below((isParameter ? 9 : 32) - first);
            const QString prefix =
                isParameter ? QStringLiteral("F %1.").arg(group) : QStringLiteral("D ");
            wishes.entries.append(
                { station, QStringLiteral("%1%2-%3").arg(prefix).arg(first).arg(last) });
            for (int i = first; i <= last; ++i)
                wishes.registers.insert(
                    { station, isParameter ? "F" : "D", isParameter ? group * 256 + i : i });
        }
    }
    return wishes;
}

} // namespace

TEST(Plan, RandomWishesAreAllReadFromTheirOwnStation)
{
    constexpr unsigned seed = 20240917;
    const int rounds = roundsFromEnvironment();
    RecordProperty("seed", static_cast<int>(seed));
    RecordProperty("rounds", rounds);
    std::mt19937 random(seed);
    std::map<int, Planner> planners; // by block size: loading a driver takes longer than a plan
    for (int round = 0; round < rounds; ++round) {
        const int blockSize = 1 + static_cast<int>(random() % 123);
        Planner &planner =
            planners.try_emplace(blockSize, privateCopy(), blocksOf(blockSize)).first->second;
        const RandomWishes wishes = randomWishes(random);
        QString error;

        const auto plan = planner.make(wishes.entries, &error);

        ASSERT_TRUE(plan) << "seed " << seed << " round " << round << ": " << error.toStdString();
        std::set<Key> read;
        for (const KEY_ADDRESS &block : plan->blocks) {
            ASSERT_LE(block.count, blockSize);
            for (int i = 0; i < block.count; ++i)
                read.insert({ block.station, block.regType.toStdString(), block.address + i });
        }
        for (const Key &key : wishes.registers)
            ASSERT_EQ(read.count(key), 1U) << "seed " << seed << " round " << round;
    }
}
