// SPDX-License-Identifier: MIT
// What each damage does to one frame, at the shortest frames and values it has to do with.
#include "simulator/frame_damage.h"

#include <gtest/gtest.h>

#include <set>

using namespace dx4::sim;

namespace {

FaultRule ruleOf(FaultKind kind)
{
    FaultRule rule;
    rule.kind = kind;
    return rule;
}

/// The frame as hex after one rule, with the dice of that seed.
std::string damaged(const char *frame, const FaultRule &rule, std::uint64_t seed = 42)
{
    Bytes bytes = fromHex(frame);
    Dice dice(seed);
    damage(bytes, rule, dice);
    return toHex(bytes);
}

/// The frames that a rule makes of one, with as many different dice as it takes to see all.
std::set<std::string> everyDamageOf(const char *frame, const FaultRule &rule)
{
    std::set<std::string> frames;
    for (std::uint64_t seed = 1; seed <= 200; ++seed)
        frames.insert(damaged(frame, rule, seed));
    return frames;
}

} // namespace

TEST(FrameDamage, FlipsOneBitOfTheFrameWhereNoCountIsSet)
{
    const std::set<std::string> frames = everyDamageOf("00 F0", ruleOf(FaultKind::FlipBits));

    const std::set<std::string> expected = { "01 F0", "02 F0", "04 F0", "08 F0", "10 F0", "20 F0",
                                             "40 F0", "80 F0", "00 F1", "00 F2", "00 F4", "00 F8",
                                             "00 E0", "00 D0", "00 B0", "00 70" };
    EXPECT_EQ(frames, expected);
}

TEST(FrameDamage, FlipsNoMoreBitsThanThereAre)
{
    FaultRule rule = ruleOf(FaultKind::FlipBits);
    rule.count = 17;

    EXPECT_EQ(damaged("00 F0", rule), "FF 0F");
}

TEST(FrameDamage, BreaksAsMuchOfTheCrcAsThereIs)
{
    const FaultRule rule = ruleOf(FaultKind::BreakCrc);

    EXPECT_EQ(damaged("01 0F F0", rule), "01 F0 0F");
    EXPECT_EQ(damaged("0F F0", rule), "F0 0F");
    EXPECT_EQ(damaged("0F", rule), "F0");
    EXPECT_EQ(damaged("", rule), "");
}

TEST(FrameDamage, CutsAFrameAnywhereButBeforeAndBehindIt)
{
    const FaultRule rule = ruleOf(FaultKind::Truncate);

    EXPECT_EQ(everyDamageOf("01 02 03 04", rule),
              std::set<std::string>({ "01", "01 02", "01 02 03" }));
    EXPECT_EQ(everyDamageOf("01", rule), std::set<std::string>({ "01" }));
}

TEST(FrameDamage, CutsNothingOffAFrameThatIsShorterThanTheCount)
{
    FaultRule rule = ruleOf(FaultKind::Truncate);
    rule.count = 4;

    EXPECT_EQ(damaged("01 02 03", rule), "01 02 03");
    EXPECT_EQ(damaged("01 02 03 04 05", rule), "01 02 03 04");
}

TEST(FrameDamage, DrawsJunkFromTheDice)
{
    EXPECT_EQ(damaged("", ruleOf(FaultKind::Junk)), "D6 A8 0A");
}

TEST(FrameDamage, PutsJunkInsideBetweenAnyTwoBytes)
{
    FaultRule rule = ruleOf(FaultKind::Junk);
    rule.place = JunkPlace::Inside;
    rule.count = 1;

    std::set<std::string> places;
    for (const std::string &frame : everyDamageOf("FA FB FC", rule)) {
        const bool isBehindFirst = frame.substr(0, 3) == "FA " && frame.substr(6) == "FB FC";
        const bool isBeforeLast = frame.substr(0, 6) == "FA FB " && frame.substr(9) == "FC";
        places.insert(isBehindFirst ? "behind FA" : isBeforeLast ? "before FC" : frame);
    }

    EXPECT_EQ(places, std::set<std::string>({ "behind FA", "before FC" }));
}

TEST(FrameDamage, PutsJunkBeforeAFrameThatHasNoInside)
{
    FaultRule rule = ruleOf(FaultKind::Junk);
    rule.place = JunkPlace::Inside;
    rule.count = 1;

    EXPECT_EQ(damaged("FF", rule), "D6 FF");
    EXPECT_EQ(damaged("FE FF", rule).substr(0, 2), "FE");
    EXPECT_EQ(damaged("FE FF", rule).substr(6), "FF");
}

TEST(FrameDamage, TakesTheNextStationAndTheFirstBehindTheLast)
{
    const FaultRule rule = ruleOf(FaultKind::WrongStation);

    EXPECT_EQ(damaged("00 03 00 00 00 00", rule).substr(0, 17), "01 03 00 00 F1 D8");
    EXPECT_EQ(damaged("F6 03 00 00", rule).substr(0, 2), "F7");
    EXPECT_EQ(damaged("F7 03 00 00", rule).substr(0, 2), "01");
    EXPECT_EQ(damaged("F8 03 00 00", rule).substr(0, 2), "01");
}

TEST(FrameDamage, TakesFunctionFourForThreeAndThreeForAnyOther)
{
    const FaultRule rule = ruleOf(FaultKind::WrongFunction);

    EXPECT_EQ(damaged("01 03 00 00", rule).substr(0, 5), "01 04");
    EXPECT_EQ(damaged("01 02 00 00", rule).substr(0, 5), "01 03");
    EXPECT_EQ(damaged("01 04 00 00", rule).substr(0, 5), "01 03");
}

TEST(FrameDamage, LeavesFramesAloneThatHaveNoRoomForACrc)
{
    for (const char *frame : { "01 03 00", "01", "" }) {
        EXPECT_EQ(damaged(frame, ruleOf(FaultKind::WrongStation)), frame);
        EXPECT_EQ(damaged(frame, ruleOf(FaultKind::WrongFunction)), frame);
    }
}

TEST(FrameDamage, ThrowsNoDiceForAnEmptyFrame)
{
    for (const FaultKind kind : { FaultKind::FlipBits, FaultKind::BreakCrc, FaultKind::Truncate,
                                  FaultKind::WrongStation, FaultKind::WrongFunction }) {
        SCOPED_TRACE(faultKindName(kind));
        Bytes empty;
        Dice dice(42);

        damage(empty, ruleOf(kind), dice);

        EXPECT_EQ(toHex(empty), "");
        EXPECT_EQ(dice.below(1000), 406U);
    }
}

TEST(FrameDamage, IsWhatSixKindsDo)
{
    std::string names;
    for (const FaultKind kind : allFaultKinds())
        names += damagesFrame(kind) ? std::string(faultKindName(kind)) + ' ' : "";

    EXPECT_EQ(names, "flip-bits break-crc truncate junk wrong-station wrong-function ");
}
