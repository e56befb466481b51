// SPDX-License-Identifier: MIT
// The line without faults: its time, its gaps, its plug.
#include "line_fixture.h"

using namespace dx4::sim;

namespace {

class CableTime : public LineFixture { };

Micros us(int value)
{
    return Micros(value);
}

} // namespace

TEST(CableSettings, WireTimeIsRoundedUpOnceForAllCharacters)
{
    CableSettings slow;
    CableSettings fast;
    fast.bitsPerSecond = 115200;
    fast.bitsPerCharacter = 10;
    CableSettings timeless;
    timeless.bitsPerSecond = 0;

    EXPECT_EQ(slow.wireTime(1), us(1146)); // 1145.8
    EXPECT_EQ(slow.wireTime(7), us(8021)); // 8020.8
    EXPECT_EQ(fast.wireTime(1), us(87)); // 86.8
    EXPECT_EQ(fast.wireTime(245), us(21268)); // 21267.4
    EXPECT_EQ(timeless.wireTime(245), us(0));
}

TEST(CableSettings, WireTimeRoundsUpEvenAThirdOfAMicrosecond)
{
    CableSettings at1;
    at1.bitsPerSecond = 1;
    CableSettings at3;
    at3.bitsPerSecond = 3;

    EXPECT_EQ(at1.wireTime(1), us(11000000));
    EXPECT_EQ(at3.wireTime(1), us(3666667)); // 3666666.7
    EXPECT_EQ(at3.wireTime(2), us(7333334)); // 7333333.3
    EXPECT_EQ(at3.wireTime(3), us(11000000));
}

TEST(CableSettings, FrameGapIsFixedOnFastLines)
{
    CableSettings timeless;
    timeless.bitsPerSecond = 0;
    CableSettings at1;
    at1.bitsPerSecond = 1;
    CableSettings at19201;
    at19201.bitsPerSecond = 19201;
    CableSettings at19200;
    at19200.bitsPerSecond = 19200;
    CableSettings at38400;
    at38400.bitsPerSecond = 38400;

    EXPECT_EQ(timeless.frameGap(), us(1750));
    EXPECT_EQ(at1.frameGap(), us(38500000));
    EXPECT_EQ(at19200.frameGap(), us(2006)); // 2005.2
    EXPECT_EQ(at19201.frameGap(), us(1750));
    EXPECT_EQ(at38400.frameGap(), us(1750));
}

TEST_F(CableTime, FirstByteComesAfterRequestTurnaroundAndOneCharacter)
{
    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));

    EXPECT_EQ(cable.nextByteAt(), us(9167 + 2000 + 1146));
}

TEST_F(CableTime, BytesArriveOneByOne)
{
    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));
    const Micros firstByte = *cable.nextByteAt();

    clock.advanceTo(firstByte - us(1));
    const Bytes before = cable.receive();
    clock.advanceTo(firstByte);
    const Bytes first = cable.receive();
    clock.advanceTo(firstByte + us(2292));
    const Bytes nextTwo = cable.receive();

    EXPECT_EQ(toHex(before), "");
    EXPECT_EQ(toHex(first), "01");
    EXPECT_EQ(toHex(nextTwo), "03 02");
}

TEST(CableTimeOfFastLines, LongReplyTakesAllOfItsTime)
{
    VirtualClock clock;
    Bus bus;
    bus.add(1);
    CableSettings settings;
    settings.bitsPerSecond = 115200;
    settings.turnaround = us(0);
    Cable cable(bus, clock, settings);

    const Bytes reply = exchange(cable, clock, withCrc(fromHex("01 03 D0 00 00 26")));

    ASSERT_EQ(reply.size(), 81U);
    // 8 characters of 11 bits take 763.9 us, 81 take 7734.4 us, and the gap is 1750 us.
    EXPECT_EQ(clock.now(), us(764 + 7735 + 1750));
}

TEST_F(CableTime, PassesWithoutARequest)
{
    clock.advance(us(3000000));

    cable.passTime();

    EXPECT_EQ(inverter.read(0xD00D), 3); // seconds since power on
}

TEST_F(CableTime, RequestTakesEffectAtItsEnd)
{
    inverter.write(0xF808, 1); // 0.1 s without a request trips
    ask("01 03 F0 00 00 01");
    const Micros lastHeard = us(9167);

    bus.advanceTo(lastHeard + us(99000));
    const int before = inverter.read(faultCodeRegister);
    bus.advanceTo(lastHeard + us(110000));

    EXPECT_EQ(before, 0);
    EXPECT_EQ(inverter.read(faultCodeRegister), 5);
}

TEST_F(CableTime, ExchangeEndsAfterTheFrameGap)
{
    ask("01 03 F0 00 00 01");

    EXPECT_EQ(clock.now(), us(9167 + 2000 + 8021 + 4011));
}

TEST_F(CableTime, ExchangeGivesUpAtItsTimeout)
{
    const std::string reply = ask("09 03 F0 00 00 01");

    EXPECT_EQ(reply, "");
    EXPECT_EQ(clock.now(), us(1000000));
}

TEST_F(CableTime, ExchangeHearsAByteThatComesAtItsTimeout)
{
    const Bytes request = withCrc(fromHex("01 03 F0 00 00 01"));

    const Bytes whole = exchange(cable, clock, request, us(9167 + 2000 + 8021));
    const Bytes cut = exchange(cable, clock, request, us(9167 + 2000 + 8021 - 1));

    EXPECT_EQ(toHex(whole), "01 03 02 00 00 B8 44");
    EXPECT_EQ(toHex(cut), "01 03 02 00 00 B8");
}

TEST_F(CableTime, EveryStationAnswersForItself)
{
    inverter.write(0xF000, 1);
    second.write(0xF000, 2);

    EXPECT_EQ(ask("01 03 F0 00 00 01"), framed("01 03 02 00 01"));
    EXPECT_EQ(ask("02 03 F0 00 00 01"), framed("02 03 02 00 02"));
    EXPECT_EQ(ask("03 03 F0 00 00 01"), "");
}

TEST_F(CableTime, BroadcastReachesEveryStation)
{
    const std::string reply = ask("00 06 F0 00 00 09");

    EXPECT_EQ(reply, "");
    EXPECT_EQ(inverter.read(0xF000), 9);
    EXPECT_EQ(second.read(0xF000), 9);
}

TEST_F(CableTime, PullingThePlugLosesWhatIsOnItsWay)
{
    cable.send(withCrc(fromHex("01 03 F0 00 00 01")));

    cable.unplug();

    EXPECT_EQ(cable.nextByteAt(), std::nullopt);
    EXPECT_TRUE(cable.unplugged());
}

TEST_F(CableTime, NothingPassesWhileThePlugIsOut)
{
    cable.unplug();
    const std::string lost = ask("01 06 F0 00 00 09");
    const int value = inverter.read(0xF000);

    cable.plug();
    const std::string back = ask("01 06 F0 00 00 09");

    EXPECT_EQ(lost, "");
    EXPECT_EQ(value, 0);
    EXPECT_EQ(back, framed("01 06 F0 00 00 09"));
}

TEST_F(CableTime, PlugIsInAtOnce)
{
    cable.unplug();

    cable.plug();

    EXPECT_FALSE(cable.unplugged());
}

TEST_F(CableTime, LogShowsRequestAndReply)
{
    ask("01 03 F0 00 00 01");
    ask("07 03 F0 00 00 01");
    cable.unplug();
    cable.plug();

    const std::vector<std::string> expected = {
        "1 > 01 03 F0 00 00 01 B7 0A",
        "1 < 01 03 02 00 00 B8 44",
        "2 > " + framed("07 03 F0 00 00 01"),
        "2 -",
        "2 = unplugged",
        "2 = plugged",
    };
    EXPECT_EQ(log, expected);
}

TEST(BusStations, AddingOneTwiceGivesTheSameInverter)
{
    Bus bus;

    Inverter &first = bus.add(5);
    Inverter &again = bus.add(5);

    EXPECT_EQ(&first, &again);
    EXPECT_EQ(bus.stations(), std::vector<int> { 5 });
    EXPECT_EQ(bus.find(6), nullptr);
}

TEST(BusStations, RefusedNumberLeavesNothingBehind)
{
    Bus bus;

    EXPECT_THROW(bus.add(300), std::invalid_argument);
    EXPECT_TRUE(bus.stations().empty());
}

namespace {

/// The fault codes of station 1 and 2, which trip 100 ms behind their last request, when 90 ms
/// behind one of their own comes that request and 20 ms pass.
std::string faultsBehind(const Bytes &request)
{
    Bus bus;
    for (const int station : { 1, 2 }) {
        bus.add(station).write(0xF808, 1);
        Bytes own = fromHex("00 03 F0 00 00 01");
        own[0] = static_cast<std::uint8_t>(station);
        bus.deliver(withCrc(own), us(0));
    }
    bus.deliver(request, us(90000));
    bus.advanceTo(us(110000));
    return std::to_string(bus.find(1)->read(faultCodeRegister)) + ' '
        + std::to_string(bus.find(2)->read(faultCodeRegister));
}

} // namespace

TEST(BusStations, HearWholeRequestsToThemselvesAndToAll)
{
    Bytes broken = withCrc(fromHex("00 06 F0 00 00 01"));
    broken.back() ^= 1U;

    EXPECT_EQ(faultsBehind(withCrc(fromHex("01 03 F0 00 00 01"))), "0 5");
    EXPECT_EQ(faultsBehind(withCrc(fromHex("02 03 F0 00 00 01"))), "5 0");
    EXPECT_EQ(faultsBehind(withCrc(fromHex("03 03 F0 00 00 01"))), "5 5");
    EXPECT_EQ(faultsBehind(withCrc(fromHex("00 06 F0 00 00 01"))), "0 0");
    EXPECT_EQ(faultsBehind(broken), "5 5");
}
