// SPDX-License-Identifier: MIT
// Every kind of fault, every condition, and the same faults for the same seed.
#include "line_fixture.h"

#include <algorithm>

using namespace dx4::sim;

namespace {

class FaultKinds : public LineFixture {
protected:
    FaultRule &once(FaultKind kind)
    {
        rule = FaultRule();
        rule.kind = kind;
        rule.times = 1;
        return rule;
    }

    std::string read() { return ask("01 03 F0 00 00 01"); }
    std::string write(const std::string &value) { return ask("01 06 F0 00 " + value); }

    FaultRule rule;
    const std::string good = "01 03 02 00 00 B8 44";
};

class FaultConditions : public FaultKinds {
protected:
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
};

} // namespace

TEST_F(FaultKinds, DropRequestKeepsTheWriteFromTheDrive)
{
    cable.plan().add(once(FaultKind::DropRequest));

    const std::string reply = write("00 05");

    EXPECT_EQ(reply, "");
    EXPECT_EQ(inverter.read(0xF000), 0);
    EXPECT_EQ(read(), good);
}

TEST_F(FaultKinds, DropReplyLeavesTheWriteDone)
{
    cable.plan().add(once(FaultKind::DropReply));

    const std::string reply = write("00 05");

    EXPECT_EQ(reply, "");
    EXPECT_EQ(inverter.read(0xF000), 5);
}

TEST_F(FaultKinds, DelayMovesTheReplyByItsDuration)
{
    once(FaultKind::Delay).duration = std::chrono::milliseconds(300);
    cable.plan().add(rule);

    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));

    EXPECT_EQ(cable.nextByteAt(), Micros(9167 + 2000 + 300000 + 1146));
}

TEST_F(FaultKinds, LateReplyMixesWithTheNextOne)
{
    once(FaultKind::Delay).duration = std::chrono::milliseconds(1100);
    cable.plan().add(rule);

    const std::string inTime = read();
    const std::string late = read();

    EXPECT_EQ(inTime, "");
    EXPECT_EQ(late, good + " " + good);
}

TEST_F(FaultKinds, FlipBitsChangesAsManyBitsAsItSays)
{
    once(FaultKind::FlipBits).count = 3;
    cable.plan().add(rule);

    const Bytes damaged = fromHex(read());

    const Bytes whole = fromHex(good);
    ASSERT_EQ(damaged.size(), whole.size());
    int changed = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (unsigned bits = damaged[i] ^ unsigned { whole[i] }; bits; bits &= bits - 1)
            ++changed;
    }
    EXPECT_EQ(changed, 3);
}

TEST_F(FaultKinds, FlipBitsOfARequestSilencesTheStation)
{
    once(FaultKind::FlipBits).side = Side::Request;
    cable.plan().add(rule);

    const std::string reply = write("00 05");

    EXPECT_EQ(reply, "");
    EXPECT_EQ(inverter.read(0xF000), 0);
}

TEST_F(FaultKinds, BreakCrcInvertsTheLastTwoBytes)
{
    cable.plan().add(once(FaultKind::BreakCrc));

    EXPECT_EQ(read(), "01 03 02 00 00 47 BB");
}

TEST_F(FaultKinds, TruncateKeepsTheFirstBytes)
{
    once(FaultKind::Truncate).count = 4;
    cable.plan().add(rule);

    EXPECT_EQ(read(), "01 03 02 00");
}

TEST_F(FaultKinds, TruncateWithoutACountKeepsAtLeastOneByteAndNotAll)
{
    once(FaultKind::Truncate).times = 50;
    cable.plan().add(rule);

    for (int i = 0; i < 50; ++i) {
        const std::size_t kept = fromHex(read()).size();
        EXPECT_GE(kept, 1U);
        EXPECT_LE(kept, 6U);
    }
}

TEST_F(FaultKinds, JunkBeforeStandsInFrontOfTheReply)
{
    once(FaultKind::Junk).count = 2;
    cable.plan().add(rule);

    const std::string reply = read();

    EXPECT_EQ(reply.size(), 9U * 3 - 1);
    EXPECT_EQ(reply.substr(6), good);
}

TEST_F(FaultKinds, JunkInsideLeavesBothEnds)
{
    once(FaultKind::Junk).place = JunkPlace::Inside;
    cable.plan().add(rule);

    const std::string reply = read();

    EXPECT_EQ(reply.size(), 10U * 3 - 1);
    EXPECT_EQ(reply.substr(0, 2), "01");
    EXPECT_EQ(reply.substr(reply.size() - 2), "44");
}

TEST_F(FaultKinds, JunkAfterStandsBehindTheReply)
{
    once(FaultKind::Junk).place = JunkPlace::After;
    cable.plan().add(rule);

    const std::string reply = read();

    EXPECT_EQ(reply.size(), 10U * 3 - 1);
    EXPECT_EQ(reply.substr(0, good.size()), good);
}

TEST_F(FaultKinds, JunkComesEvenWhereNobodyAnswers)
{
    once(FaultKind::Junk).count = 4;
    cable.plan().add(rule);

    EXPECT_EQ(fromHex(ask("09 03 F0 00 00 01")).size(), 4U);
}

TEST_F(FaultKinds, WrongStationCarriesAGoodCrc)
{
    cable.plan().add(once(FaultKind::WrongStation));

    EXPECT_EQ(read(), framed("02 03 02 00 00"));
}

TEST_F(FaultKinds, WrongStationOfARequestIsObeyedByTheOther)
{
    once(FaultKind::WrongStation).side = Side::Request;
    cable.plan().add(rule);

    const std::string reply = write("00 05");

    EXPECT_EQ(reply, framed("02 06 F0 00 00 05"));
    EXPECT_EQ(inverter.read(0xF000), 0);
    EXPECT_EQ(second.read(0xF000), 5);
}

TEST_F(FaultKinds, WrongFunctionCarriesAGoodCrc)
{
    cable.plan().add(once(FaultKind::WrongFunction));

    EXPECT_EQ(read(), framed("01 04 02 00 00"));
}

TEST_F(FaultKinds, WrongFunctionTakesTheValueOfTheRule)
{
    once(FaultKind::WrongFunction).value = 0x10;
    cable.plan().add(rule);

    EXPECT_EQ(write("00 05"), framed("01 10 F0 00 00 05"));
}

TEST_F(FaultKinds, ExceptionComesInsteadAndNothingIsWritten)
{
    once(FaultKind::Exception).value = 6;
    cable.plan().add(rule);

    const std::string reply = write("00 05");

    EXPECT_EQ(reply, framed("01 86 06"));
    EXPECT_EQ(inverter.read(0xF000), 0);
}

TEST_F(FaultKinds, ExceptionNeedsAStationToSpeak)
{
    cable.plan().add(once(FaultKind::Exception));

    EXPECT_EQ(ask("09 03 F0 00 00 01"), "");
}

TEST_F(FaultKinds, EchoStandsBeforeTheReply)
{
    cable.plan().add(once(FaultKind::Echo));

    EXPECT_EQ(read(), "01 03 F0 00 00 01 B7 0A " + good);
}

TEST_F(FaultKinds, EchoComesAlsoWhenNoReplyDoes)
{
    for (const FaultKind kind : { FaultKind::DropRequest, FaultKind::DropReply, FaultKind::Silence,
                                  FaultKind::PowerCycle }) {
        SCOPED_TRACE(faultKindName(kind));
        cable.plan().add(once(FaultKind::Echo));
        cable.plan().add(once(kind));

        EXPECT_EQ(read(), "01 03 F0 00 00 01 B7 0A");
    }
}

TEST_F(FaultKinds, EchoDoesNotPassAPulledPlug)
{
    cable.plan().add(once(FaultKind::Echo));
    cable.plan().add(once(FaultKind::Unplug));

    EXPECT_EQ(read(), "");
}

TEST_F(FaultKinds, SilenceLastsItsTimeWhileTheDriveObeys)
{
    once(FaultKind::Silence).duration = std::chrono::milliseconds(1500);
    cable.plan().add(rule);

    const std::string first = write("00 05");
    const std::string stillSilent = write("00 06");
    const std::string after = read();

    EXPECT_EQ(first, "");
    EXPECT_EQ(stillSilent, "");
    EXPECT_EQ(after, framed("01 03 02 00 06"));
}

TEST_F(FaultKinds, UnplugLetsNothingPassForItsTime)
{
    once(FaultKind::Unplug).duration = std::chrono::milliseconds(1500);
    cable.plan().add(rule);

    const std::string first = write("00 05");
    const std::string stillOut = write("00 06");
    const std::string after = read();

    EXPECT_EQ(first, "");
    EXPECT_EQ(stillOut, "");
    EXPECT_EQ(after, good);
}

TEST_F(FaultKinds, PlugEndsAnUnplugOfThePlan)
{
    once(FaultKind::Unplug).duration = std::chrono::hours(1);
    cable.plan().add(rule);
    read();

    cable.plug();

    EXPECT_EQ(read(), good);
}

TEST_F(FaultKinds, PowerCycleSilencesOneStationAndStopsItsDrive)
{
    ask("01 10 10 01 00 02 04 00 01 0B B8"); // run, 30 Hz
    pass(4000);
    once(FaultKind::PowerCycle).duration = std::chrono::milliseconds(1500);
    cable.plan().add(rule);

    const std::string first = read();
    const std::string other = ask("02 03 F0 00 00 01");
    const std::string stillOff = read();
    const std::string back = ask("01 03 D0 00 00 02");

    EXPECT_EQ(first, "");
    EXPECT_EQ(other, framed("02 03 02 00 00"));
    EXPECT_EQ(stillOff, "");
    EXPECT_EQ(back, framed("01 03 04 00 00 00 00"));
}

TEST_F(FaultKinds, LogNamesWhatStruck)
{
    once(FaultKind::BreakCrc).side = Side::Request;
    cable.plan().add(rule);

    read();

    const std::vector<std::string> expected = { "1 > 01 03 F0 00 00 01 B7 0A",
                                                "1 ! break-crc request",
                                                "1 ~ 01 03 F0 00 00 01 48 F5", "1 -" };
    EXPECT_EQ(log, expected);
}

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

TEST(FaultNames, ReadBackAsTheirKind)
{
    for (FaultKind kind : allFaultKinds())
        EXPECT_EQ(faultKindByName(faultKindName(kind)), kind);
    EXPECT_EQ(allFaultKinds().size(), 14U);
    EXPECT_EQ(faultKindByName("gremlin"), std::nullopt);
}
