// SPDX-License-Identifier: MIT
// Every kind of fault on the line.
#include "line_fixture.h"

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

/// A line where bytes take no time.
std::string askWithoutTime(const std::vector<FaultKind> &kinds)
{
    std::vector<FaultRule> rules;
    for (const FaultKind kind : kinds) {
        FaultRule rule;
        rule.kind = kind;
        rules.push_back(rule);
    }
    VirtualClock clock;
    Bus bus;
    bus.add(1);
    CableSettings settings;
    settings.bitsPerSecond = 0;
    Cable cable(bus, clock, settings, FaultPlan(rules));
    return toHex(exchange(cable, clock, withCrc(fromHex("01 03 F0 00 00 01"))));
}

} // namespace

TEST_F(FaultKinds, DropRequestKeepsTheWriteFromTheDrive)
{
    cable.plan().add(once(FaultKind::DropRequest));

    const std::string reply = write("00 05");

    EXPECT_EQ(reply, "");
    EXPECT_EQ(inverter.read(0xF000), 0);
    EXPECT_EQ(read(), good);
}

TEST_F(FaultKinds, TimePassesForTheDrivesThoughTheyHearNothing)
{
    cable.plan().add(once(FaultKind::DropRequest));
    clock.advance(std::chrono::seconds(3));

    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));

    EXPECT_EQ(inverter.read(0xD00D), 3); // seconds since power on
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

TEST_F(FaultKinds, ExceptionIsDeviceFailureWhereTheRuleNamesNone)
{
    cable.plan().add(once(FaultKind::Exception));

    EXPECT_EQ(read(), framed("01 83 04"));
}

TEST_F(FaultKinds, ExceptionComesAsSoonAsTheStationHasPowerAgain)
{
    once(FaultKind::PowerCycle).duration = std::chrono::milliseconds(1500);
    cable.plan().add(rule);
    read();
    cable.plan().add(once(FaultKind::Exception));

    const std::string off = read();
    cable.plan().add(once(FaultKind::Exception));
    const std::string on = read();

    EXPECT_EQ(off, "");
    EXPECT_EQ(on, framed("01 83 04"));
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

TEST_F(FaultKinds, EchoComesByteByByteAtTheEndOfTheRequest)
{
    cable.plan().add(once(FaultKind::Echo));

    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));
    clock.advanceTo(Micros(9167 + 1145));
    const Bytes before = cable.receive();
    clock.advanceTo(Micros(9167 + 1146));
    const Bytes first = cable.receive();
    clock.advanceTo(Micros(9167 + 2292));
    const Bytes next = cable.receive();

    EXPECT_EQ(toHex(before), "");
    EXPECT_EQ(toHex(first), "01");
    EXPECT_EQ(toHex(next), "03");
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

TEST_F(FaultKinds, EchoAndJunkDoNotPassAPulledPlug)
{
    cable.plan().add(once(FaultKind::Echo));
    cable.plan().add(once(FaultKind::Junk));
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

TEST_F(FaultKinds, SilenceIsOverAtItsEnd)
{
    once(FaultKind::Silence).duration = std::chrono::milliseconds(1500); // from the request's end
    cable.plan().add(rule);
    read();

    clock.advanceTo(Micros(1499999));
    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));
    const bool before = cable.nextByteAt().has_value();
    clock.advanceTo(Micros(1500000));
    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));
    const bool after = cable.nextByteAt().has_value();

    EXPECT_FALSE(before);
    EXPECT_TRUE(after);
}

TEST_F(FaultKinds, UnplugLosesWhatIsOnItsWay)
{
    once(FaultKind::Delay).duration = std::chrono::milliseconds(1100);
    cable.plan().add(rule);
    read();
    cable.plan().add(once(FaultKind::Unplug));

    const std::string during = read();
    const std::string after = read();

    EXPECT_EQ(during, "");
    EXPECT_EQ(after, good);
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

TEST_F(FaultKinds, PowerCycleOfAStationThatIsNotThereLeavesTheOthersOn)
{
    once(FaultKind::PowerCycle).duration = std::chrono::milliseconds(1500);
    rule.times = 2;
    cable.plan().add(rule);

    const std::string absent = ask("09 03 F0 00 00 01");
    const std::string empty = sendRaw({});

    EXPECT_EQ(absent, "");
    EXPECT_EQ(empty, "");
    EXPECT_TRUE(inverter.powered());
    EXPECT_TRUE(second.powered());
}

TEST_F(FaultKinds, LogNamesTheSideOfADamageAlone)
{
    cable.plan().add(once(FaultKind::WrongStation));
    cable.plan().add(once(FaultKind::DropReply));

    read();

    const std::vector<std::string> expected = { "1 > 01 03 F0 00 00 01 B7 0A",
                                                "1 ! wrong-station reply", "1 ! drop-reply",
                                                "1 -" };
    EXPECT_EQ(log, expected);
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

TEST(FaultsWithoutTime, EchoKeepsTheOrderOfItsBytes)
{
    EXPECT_EQ(askWithoutTime({ FaultKind::Echo }), "01 03 F0 00 00 01 B7 0A 01 03 02 00 00 B8 44");
}

TEST(FaultsWithoutTime, UnplugLetsNeitherEchoNorJunkPass)
{
    EXPECT_EQ(askWithoutTime({ FaultKind::Unplug, FaultKind::Echo, FaultKind::Junk }), "");
}
