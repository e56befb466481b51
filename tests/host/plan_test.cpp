// SPDX-License-Identifier: MIT
// Plans: every wanted register is read from its own station, or the plan is refused with a reason.
#include "host/plan/plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
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
Texts textsOf(const QList<KEY_ADDRESS> &blocks)
{
    Texts texts;
    for (const KEY_ADDRESS &block : blocks)
        texts.push_back(std::to_string(block.station) + ' ' + block.regType.toStdString() + ' '
                        + std::to_string(block.address) + ' ' + std::to_string(block.count));
    return texts;
}

Texts planned(const QVector<PlanEntry> &entries, int blockSize = 16)
{
    Planner planner(privateCopy(), blocksOf(blockSize));
    QString error;
    const auto plan = planner.make(entries, &error);
    return plan ? textsOf(plan->blocks) : Texts { error.toStdString() };
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

TEST(Plan, EqualRegistersOfTwoStationsAreABlockEach)
{
    EXPECT_EQ(planned({ { 2, QStringLiteral("D 3-9") }, { 1, QStringLiteral("D 3-9") } }),
              (Texts { "1 D 3 7", "2 D 3 7" }));
}

TEST(Plan, BlocksAreInTheOrderOfStationTypeAndAddress)
{
    EXPECT_EQ(planned({ { 2, QStringLiteral("FU") },
                        { 1, QStringLiteral("FU") },
                        { 1, QStringLiteral("SW") },
                        { 1, QStringLiteral("D 4") },
                        { 1, QStringLiteral("F 8.2") },
                        { 1, QStringLiteral("F 0.3") } }),
              (Texts { "1 F 3 1", "1 F 2050 1", "1 D 4 1", "1 SW 0 1", "1 FU 0 1", "2 FU 0 1" }));
}

TEST(Plan, GroupsStayApartAndBlocksKeepTheirSize)
{
    EXPECT_EQ(planned({ { 1, QStringLiteral("F 0.16-0.18") },
                        { 1, QStringLiteral("F 1.0-1.4") },
                        { 1, QStringLiteral("F c.13") } },
                      4),
              (Texts { "1 F 16 3", "1 F 256 4", "1 F 260 1", "1 F 2573 1" }));
}

TEST(Plan, HandsOverRunsThatNeitherOverlapNorTouch)
{
    Planner planner(privateCopy(), blocksOf(4));

    const auto plan = planner.make({ { 1, QStringLiteral("F 0.1-0.9") },
                                     { 1, QStringLiteral("F 0.3") },
                                     { 1, QStringLiteral("F 0.11") },
                                     { 1, QStringLiteral("SW") },
                                     { 1, QStringLiteral("FU") },
                                     { 2, QStringLiteral("F 1.2-1.3") } },
                                   nullptr);

    ASSERT_TRUE(plan);
    EXPECT_EQ(textsOf(plan->blocks),
              (Texts { "1 F 1 4", "1 F 5 4", "1 F 9 1", "1 F 11 1", "1 SW 0 1", "1 FU 0 1",
                       "2 F 258 2" }));
}

TEST(Plan, TheSameWishManyTimesIsReadOnce)
{
    const QVector<PlanEntry> entries(500, { 1, QStringLiteral("D 4-5") });

    EXPECT_EQ(planned(entries), Texts { "1 D 4 2" });
}

TEST(Plan, BlocksAreOf1To123RegistersAtMost)
{
    const QVector<PlanEntry> one = { { 1, QStringLiteral("D 0") } };

    EXPECT_EQ(planned(one, 0), Texts { "block size 0; it can be 1 to 123" });
    EXPECT_EQ(planned(one, 1), Texts { "1 D 0 1" });
    EXPECT_EQ(planned(one, 123), Texts { "1 D 0 1" });
    EXPECT_EQ(planned(one, 124), Texts { "block size 124; it can be 1 to 123" });
}

TEST(Plan, StationsAre1To247)
{
    EXPECT_EQ(planned({ { 0, QStringLiteral("D 0") } }),
              Texts { "station 0, \"D 0\": no station 0; stations are 1 to 247" });
    EXPECT_EQ(planned({ { 247, QStringLiteral("D 0") } }), Texts { "247 D 0 1" });
    EXPECT_EQ(planned({ { 248, QStringLiteral("D 0") } }),
              Texts { "station 248, \"D 0\": no station 248; stations are 1 to 247" });
}

TEST(Plan, TellsHowManyRegistersAreWanted)
{
    Planner planner(privateCopy(), blocksOf(16));

    const auto plan = planner.make({ { 1, QStringLiteral("D 5-7") },
                                     { 1, QStringLiteral("D 6") },
                                     { 2, QStringLiteral("D 3") } },
                                   nullptr);

    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->wantedRegisters, 4);
}

TEST(Plan, CountsARegisterOnceHoweverManyWishesNameIt)
{
    Planner planner(privateCopy(), blocksOf(16));

    const auto plan =
        planner.make({ { 1, QStringLiteral("D 0-3") }, { 1, QStringLiteral("D 2-5") } }, nullptr);

    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->wantedRegisters, 6);
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

TEST(Plan, BlocksOfNoRegisterAndOfMoreThan123AreUnreadable)
{
    QList<KEY_ADDRESS> blocks;
    for (int count : { 0, 1, 123, 124 })
        blocks.append(wanted(7, QStringLiteral("F"), 0x0105, count));

    EXPECT_EQ(unreadable(blocks),
              (QStringList {
                  QStringLiteral("station 7, F 1.5 (0xF105): not polled, as it is a block of 0 "
                                 "registers; a request asks for 1 to 123"),
                  QStringLiteral("station 7, F 1.5 (0xF105): not polled, as it is a block of 124 "
                                 "registers; a request asks for 1 to 123") }));
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
        RefusalRow {
            "PastTheEndOfGroupC", 1, "F c.14", 16,
            "station 1, \"F c.14\": F c.14 (0xFC0E) is out of range; the group reaches from "
            "F c.0 (0xFC00) to F c.13 (0xFC0D)" },
        RefusalRow {
            "PastTheMonitors", 2, "D 30-32", 16,
            "station 2, \"D 30-32\": D 32 (0xD020) is out of range; D reaches from 0 to 31 "
            "(0xD01F)" },
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

/// A Modbus register of a station, as its frames name it.
constexpr int registerKey(int station, int modbusRegister)
{
    return station * 0x10000 + modbusRegister;
}

using Keys = std::vector<int>;

void sortUnique(Keys &keys)
{
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
}

struct RandomWishes {
    QVector<PlanEntry> entries;
    Keys registers; ///< ascending
};

/// Configurations to draw: KORVANE_PLAN_ROUNDS, or 300.
int roundsFromEnvironment()
{
    bool isNumber = false;
    const int rounds = qEnvironmentVariableIntValue("KORVANE_PLAN_ROUNDS", &isNumber);
    return isNumber && rounds > 0 ? rounds : 300;
}

class Dice {
public:
    explicit Dice(unsigned seed)
        : m_random(seed)
    {
    }

    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

private:
    std::mt19937 m_random;
};

/// One wish of a station: a run of parameters of any group, of monitors, or a word of its own.
void addWish(RandomWishes &wishes, Dice &dice, int station)
{
    const int kind = dice.below(8);
    if (kind == 0) {
        const bool isFault = dice.below(2) == 1;
        wishes.entries.append({ station, isFault ? QStringLiteral("FU") : QStringLiteral("SW") });
        wishes.registers.push_back(registerKey(station, isFault ? 0x2001 : 0x2000));
        return;
    }
    const bool isParameter = kind % 2 == 0;
    const int group = dice.below(11); // the last one is "c"
    const int limit = isParameter ? 9 : 32;
    const int first = dice.below(limit);
    const int last = first + dice.below(limit - first);
    const QString groupText = group == 10 ? QStringLiteral("c") : QString::number(group);
    const QString prefix =
        isParameter ? QStringLiteral("F %1.").arg(groupText) : QStringLiteral("D ");
    wishes.entries.append({ station, QStringLiteral("%1%2-%3").arg(prefix).arg(first).arg(last) });
    const int base = !isParameter ? 0xD000 : group == 10 ? 0xFC00 : 0xF000 + 0x100 * group;
    for (int i = first; i <= last; ++i)
        wishes.registers.push_back(registerKey(station, base + i));
}

/// Wishes of 1 to 31 stations, with overlaps, contained runs and equal ranges on neighbours.
RandomWishes randomWishes(Dice &dice)
{
    RandomWishes wishes;
    const int stations = 1 + dice.below(31);
    for (int station = 1; station <= stations; ++station) {
        for (int n = dice.below(5); n >= 0; --n)
            addWish(wishes, dice, station);
    }
    sortUnique(wishes.registers);
    return wishes;
}

/// The built driver with a state that all share who load it; each link that is made sets it up
/// anew.
std::unique_ptr<Plugin> sharedDriver()
{
    return Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE));
}

/// What the driver asks for in one rotation, by the bytes of its frames.
///
/// @param longest  out: registers of the longest read
Keys askedFor(const Plan &plan, int blockSize, int *longest)
{
    LinkSettings settings = blocksOf(blockSize);
    settings.retryLimit = 1; // a read without a reply makes room for the next
    Link link(sharedDriver(), settings);
    link.poll(plan.blocks);
    Keys asked;
    FRAME_PRO read;
    for (int i = 0; i < plan.blocks.size(); ++i) {
        while (!link.nextFrame(read)) // the driver's pause after some requests in a row
            continue;
        const int count = read.frame[4] * 256 + read.frame[5];
        *longest = std::max(*longest, count);
        for (int n = 0; n < count; ++n)
            asked.push_back(registerKey(read.frame[0], read.frame[2] * 256 + read.frame[3] + n));
        link.handReply(QByteArray());
    }
    return asked;
}

} // namespace

TEST(Plan, RandomWishesAreReadOnceFromTheirOwnStationAndNothingElseIs)
{
    constexpr unsigned seed = 20240917;
    const int rounds = roundsFromEnvironment();
    RecordProperty("seed", static_cast<int>(seed));
    RecordProperty("rounds", rounds);
    Dice dice(seed);
    const auto keptLoaded = sharedDriver(); // loading takes longer than a plan
    for (int round = 0; round < rounds; ++round) {
        const int blockSize = 1 + dice.below(123);
        const RandomWishes wishes = randomWishes(dice);
        QString error;

        const auto plan = Planner(sharedDriver(), blocksOf(blockSize)).make(wishes.entries, &error);

        ASSERT_TRUE(plan) << "seed " << seed << " round " << round << ": " << error.toStdString();
        int longest = 0;
        Keys asked = askedFor(*plan, blockSize, &longest);
        std::sort(asked.begin(), asked.end());
        ASSERT_LE(longest, blockSize) << "round " << round;
        ASSERT_EQ(asked, wishes.registers) << "seed " << seed << " round " << round;
        ASSERT_EQ(plan->wantedRegisters, static_cast<int>(wishes.registers.size()));
    }
}

TEST(Planner, NeedsNobodyWhoReadsTheReason)
{
    Planner planner(privateCopy(), LinkSettings());

    EXPECT_FALSE(planner.make({ { 248, QStringLiteral("D 0") } }, nullptr));
}

TEST(Planner, RefusesADriverThatIsNull)
{
    EXPECT_THROW(Planner(nullptr, LinkSettings()), std::invalid_argument);
}
