// SPDX-License-Identifier: MIT
// When faults strike, and the same faults for the same seed.
#include "line_fixture.h"

using namespace dx4::sim;

namespace {

class FaultConditions : public LineFixture {
protected:
    std::string read() { return ask("01 03 F0 00 00 01"); }

    /// Which of the next `count` reads were left without a reply.
    std::vector<int> lostOf(int count)
    {
        std::vector<int> lost;
        for (int i = 1; i <= count; ++i) {
            if (read().empty())
                lost.push_back(i);
        }
        return lost;
    }

    FaultRule rule; ///< drops replies
    const std::string good = "01 03 02 00 00 B8 44";
};

} // namespace

TEST_F(FaultConditions, FrameStrikesOnce)
{
    rule.frame = 3;
    cable.plan().add(rule);

    EXPECT_EQ(lostOf(8), std::vector<int>({ 3 }));
}

TEST_F(FaultConditions, EveryStrikesAtItsMultiples)
{
    rule.every = 3;
    cable.plan().add(rule);

    EXPECT_EQ(lostOf(8), std::vector<int>({ 3, 6 }));
}

TEST_F(FaultConditions, EveryOneStrikesAlwaysAndZeroNever)
{
    rule.every = 0;
    cable.plan().add(rule);
    const std::vector<int> never = lostOf(3);
    rule.every = 1;
    cable.plan().add(rule);

    EXPECT_TRUE(never.empty());
    EXPECT_EQ(lostOf(3), std::vector<int>({ 1, 2, 3 }));
}

TEST_F(FaultConditions, TimesBoundsTheStrikes)
{
    rule.every = 2;
    rule.times = 2;
    cable.plan().add(rule);

    EXPECT_EQ(lostOf(8), std::vector<int>({ 2, 4 }));
}

TEST_F(FaultConditions, ProbabilityZeroNeverAndOneAlways)
{
    rule.probability = 0.0;
    cable.plan().add(rule);
    const std::vector<int> never = lostOf(5);
    rule.probability = 1.0;
    cable.plan().add(rule);

    EXPECT_TRUE(never.empty());
    EXPECT_EQ(lostOf(3), std::vector<int>({ 1, 2, 3 }));
}

TEST_F(FaultConditions, ProbabilityStrikesAboutAsOftenAsItSays)
{
    rule.probability = 0.25;
    cable.plan().add(rule);

    const std::size_t lost = lostOf(1000).size();

    EXPECT_GT(lost, 200U);
    EXPECT_LT(lost, 300U);
}

TEST_F(FaultConditions, RegisterRangeStrikesWhereTheRequestTouchesIt)
{
    rule.registers = RegisterRange { 0xD002, 0xD003 };
    cable.plan().add(rule);

    EXPECT_NE(ask("01 03 D0 00 00 02"), "");
    EXPECT_EQ(ask("01 03 D0 00 00 03"), "");
    EXPECT_EQ(ask("01 03 D0 03 00 01"), "");
    EXPECT_NE(ask("01 03 D0 04 00 01"), "");
}

TEST(FaultRegisters, AreThoseThatAWholeRequestNames)
{
    const auto touches = [](const char *request, std::uint16_t first, std::uint16_t last) {
        FaultRule rule;
        rule.registers = RegisterRange { first, last };
        return !FaultPlan({ rule }).strike(1, fromHex(request), Micros(0)).empty();
    };

    EXPECT_TRUE(touches("01 03 D0 01 00 01 00 00", 0xD001, 0xD001));
    EXPECT_FALSE(touches("01 03 D0 01 00 01 00 00", 0xD002, 0xD003));
    EXPECT_TRUE(touches("01 03 D0 01 00 00 00 00", 0xD001, 0xD001)); // of no register
    EXPECT_FALSE(touches("01 03 D0 01 00 00 00 00", 0xD002, 0xD002));
    EXPECT_FALSE(touches("01 03 D0 01 00 01 00", 0xD001, 0xD001)); // one byte is missing
    EXPECT_FALSE(touches("01 04 D0 01 00 01 00 00", 0xD001, 0xD001));
    EXPECT_TRUE(touches("01 06 F0 00 00 10 00 00", 0xF000, 0xF000));
    EXPECT_FALSE(touches("01 06 F0 00 00 10 00 00", 0xF001, 0xF00F)); // 16 is its value
    EXPECT_TRUE(touches("01 10 F0 00 00 02 04 00 01 00 02 00 00", 0xF001, 0xF001));
    EXPECT_FALSE(touches("01 10 F0 00 00 02 04 00 01 00 02 00 00", 0xF002, 0xF002));
    EXPECT_TRUE(touches("01 03 FF FF 00 01 00 00", 0xFFFF, 0xFFFF));
    EXPECT_TRUE(touches("01 03 FF FE 00 04 00 00", 0xFFFF, 0xFFFF)); // beyond the last register
}

TEST_F(FaultConditions, StationLeavesTheOthersAlone)
{
    rule.station = 2;
    cable.plan().add(rule);

    EXPECT_NE(ask("01 03 F0 00 00 01"), "");
    EXPECT_EQ(ask("02 03 F0 00 00 01"), "");
}

TEST_F(FaultConditions, TimeWindowHasABeginAndAnEnd)
{
    rule.from = std::chrono::milliseconds(1000);
    rule.until = std::chrono::milliseconds(2000);
    cable.plan().add(rule);

    const std::string before = read();
    clock.advanceTo(std::chrono::milliseconds(1000));
    const std::string inside = ask("01 03 F0 00 00 01");
    clock.advanceTo(std::chrono::milliseconds(2000));
    const std::string after = read();

    EXPECT_EQ(before, good);
    EXPECT_EQ(inside, "");
    EXPECT_EQ(after, good);
}

TEST_F(FaultConditions, AllThatAreSetMustHold)
{
    rule.every = 2;
    rule.from = std::chrono::milliseconds(100);
    cable.plan().add(rule);

    const std::vector<int> early = lostOf(2);
    clock.advanceTo(std::chrono::milliseconds(100));

    EXPECT_TRUE(early.empty());
    EXPECT_EQ(lostOf(4), std::vector<int>({ 2, 4 }));
}

namespace {

std::vector<std::string> logOfABadLine(std::uint64_t seed)
{
    std::vector<FaultRule> rules;
    for (FaultKind kind : allFaultKinds()) {
        FaultRule rule;
        rule.kind = kind;
        rule.probability = 0.08;
        rule.duration = std::chrono::milliseconds(40);
        rules.push_back(rule);
    }
    VirtualClock clock;
    Bus bus;
    bus.add(1);
    Cable cable(bus, clock, {}, FaultPlan(rules, seed));
    std::vector<std::string> log;
    cable.observe([&log](const LineEvent &event) { log.push_back(logLine(event)); });
    for (int i = 0; i < 300; ++i)
        exchange(cable, clock, withCrc(fromHex("01 03 D0 00 00 0E")), Micros(50000));
    return log;
}

} // namespace

TEST(FaultSeed, SameSeedGivesTheSameBytes)
{
    const std::vector<std::string> first = logOfABadLine(42);
    const std::vector<std::string> again = logOfABadLine(42);

    EXPECT_GT(first.size(), 600U);
    EXPECT_EQ(first, again);
}

TEST(FaultSeed, AnotherSeedGivesOtherBytes)
{
    EXPECT_NE(logOfABadLine(42), logOfABadLine(43));
}

TEST(FaultSeed, DiceAreTheSameOnEveryMachine)
{
    Dice dice(42);

    EXPECT_EQ(dice.below(1000), 406U);
}

TEST(FaultSeed, DiceWithoutSidesAreNotThrown)
{
    Dice dice(42);

    const std::uint32_t none = dice.below(0);

    EXPECT_EQ(none, 0U);
    EXPECT_EQ(dice.below(1000), 406U);
}

TEST(FaultSeed, ChanceComesTrueBelowItsProbability)
{
    // The first throw of seed 42, as a share of 2^53.
    EXPECT_FALSE(Dice(42).chance(6801836353641660.0 / 9007199254740992.0));
    EXPECT_TRUE(Dice(42).chance(6801836353641661.0 / 9007199254740992.0));
}

TEST(FaultNames, ReadBackAsTheirKind)
{
    for (FaultKind kind : allFaultKinds())
        EXPECT_EQ(faultKindByName(faultKindName(kind)), kind);
    EXPECT_EQ(allFaultKinds().size(), 14U);
    EXPECT_EQ(faultKindByName("gremlin"), std::nullopt);
}
