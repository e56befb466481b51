// SPDX-License-Identifier: MIT
// Commands of the standard input, and how they answer as text and as JSON.
#include "simulator/commands.h"

#include "line_fixture.h"

#include <algorithm>
#include <sstream>

using namespace dx4::sim;

namespace {

struct CommandRow {
    const char *name;
    const char *line;
    const char *answer;
};

class CommandLines : public LineFixture {
protected:
    std::string answerTo(const std::string &line)
    {
        out.str({});
        goesOn = commands.run(line);
        return out.str();
    }

    std::ostringstream out;
    Reporter reporter { out, false };
    Commands commands { bus, cable, clock, reporter };
    bool goesOn = true;
};

class RefusedCommands : public CommandLines, public ::testing::WithParamInterface<CommandRow> { };

} // namespace

TEST_F(CommandLines, SetAndGetTheFirstStation)
{
    EXPECT_EQ(answerTo("set F4.28 0x0102"), "ok\n");
    EXPECT_EQ(answerTo("get F4.28"), "F4.28 258\n");
    EXPECT_EQ(second.read(0xF41C), 0);
}

TEST_F(CommandLines, StationInFrontChoosesIt)
{
    EXPECT_EQ(answerTo("@2 set F0.1 5"), "ok\n");

    EXPECT_EQ(inverter.read(0xF001), 0);
    EXPECT_EQ(second.read(0xF001), 5);
}

TEST_F(CommandLines, HoldAndReleaseAMonitorValue)
{
    EXPECT_EQ(answerTo("hold D3 400"), "ok\n");
    EXPECT_EQ(answerTo("get D3"), "D3 400\n");
    EXPECT_EQ(answerTo("release D3"), "ok\n");
    EXPECT_EQ(answerTo("get D3"), "D3 0\n");
}

TEST_F(CommandLines, TripAndStatusShowTheFault)
{
    EXPECT_EQ(answerTo("@2 trip overvoltage"), "ok\n");

    EXPECT_EQ(answerTo("status"),
              "station 1: stopped, 0.00 Hz, 0.0 A, 0 V, link 566 V, 25.0 C, fault none\n"
              "station 2: fault, 0.00 Hz, 0.0 A, 0 V, link 566 V, 25.0 C, fault overvoltage\n");
}

TEST_F(CommandLines, MainsAndAmbientReachTheDrive)
{
    EXPECT_EQ(answerTo("mains 200"), "ok\n");
    EXPECT_EQ(answerTo("@2 ambient 120"), "ok\n");

    pass(600000);

    EXPECT_EQ(inverter.read(faultCodeRegister), 3);
    EXPECT_EQ(second.read(faultCodeRegister), 4);
}

TEST_F(CommandLines, NumbersAreDecimal)
{
    EXPECT_EQ(answerTo("hold D0 0101"), "ok\n");
    EXPECT_EQ(answerTo("ambient -12.5"), "ok\n");

    EXPECT_EQ(answerTo("get D0"), "D0 101\n");
}

TEST_F(CommandLines, NumbersReachTheirLimits)
{
    for (const char *line : { "mains 0", "mains 1000", "ambient -40", "ambient 200",
                              "power-cycle 3600000", "power-cycle 0" })
        EXPECT_EQ(answerTo(line), "ok\n") << line;
}

TEST_F(CommandLines, SeeTheDriveAsItIsNow)
{
    clock.advance(std::chrono::seconds(3));

    EXPECT_EQ(answerTo("get D13"), "D13 3\n");
}

TEST_F(CommandLines, RegisterThatWasTakenAwayIsNotThere)
{
    inverter.remove(0xF003);

    EXPECT_EQ(answerTo("get F0.3"), "error: F0.3: this station does not have it\n");
    EXPECT_EQ(answerTo("@2 get F0.3"), "F0.3 0\n");
}

TEST_F(CommandLines, UnplugAndPlug)
{
    EXPECT_EQ(answerTo("unplug"), "ok\n");
    const std::string lost = ask("01 03 20 01 00 01");

    EXPECT_EQ(answerTo("plug"), "ok\n");

    EXPECT_EQ(lost, "");
    EXPECT_EQ(ask("01 03 20 01 00 01"), "01 03 02 00 00 B8 44");
}

TEST_F(CommandLines, PowerCycleTakesItsTime)
{
    EXPECT_EQ(answerTo("power-cycle 1500"), "ok\n");
    const std::string off = ask("01 03 20 01 00 01");
    pass(600);

    EXPECT_EQ(off, "");
    EXPECT_EQ(ask("01 03 20 01 00 01"), "01 03 02 00 00 B8 44");
}

TEST_F(CommandLines, PowerCycleTakesMilliseconds)
{
    answerTo("power-cycle 1500.5");

    bus.advanceTo(Micros(1500499));
    const bool before = inverter.powered();
    bus.advanceTo(Micros(1500500));

    EXPECT_FALSE(before);
    EXPECT_TRUE(inverter.powered());
}

TEST_F(CommandLines, FaultMayBeOneWord)
{
    EXPECT_EQ(answerTo("fault kind=\"echo\""), "ok\n");
}

TEST_F(CommandLines, FaultAddsARuleAndFaultsOffTakesAllAway)
{
    EXPECT_EQ(answerTo("fault kind = \"echo\", registers = \"SW\""), "ok\n");
    const std::string echoed = ask("01 03 20 00 00 01");

    EXPECT_EQ(answerTo("faults-off"), "ok\n");

    EXPECT_EQ(echoed, framed("01 03 20 00 00 01") + ' ' + framed("01 03 02 00 01"));
    EXPECT_EQ(ask("01 03 20 00 00 01"), framed("01 03 02 00 01"));
}

TEST_F(CommandLines, HelpNamesEveryCommand)
{
    const std::string help = answerTo("help");

    for (const char *name :
         { "status", "get", "set", "hold", "release", "trip", "mains", "ambient", "power-cycle",
           "unplug", "plug", "fault", "faults-off", "help", "quit", "@STATION" })
        EXPECT_NE(help.find(std::string(name)), std::string::npos) << name;
    EXPECT_EQ(help.find("error"), std::string::npos);
    EXPECT_EQ(std::count(help.begin(), help.end(), '\n'), 16);
}

TEST_F(CommandLines, QuitEndsAndNothingElseDoes)
{
    answerTo("");
    EXPECT_TRUE(goesOn);
    answerTo("nonsense");
    EXPECT_TRUE(goesOn);
    answerTo("@9 status");
    EXPECT_TRUE(goesOn);
    answerTo("quit");
    EXPECT_FALSE(goesOn);
}

TEST_P(RefusedCommands, SayWhatWasExpected)
{
    EXPECT_EQ(answerTo(GetParam().line), std::string("error: ") + GetParam().answer + '\n');
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RefusedCommands,
    ::testing::Values(
        CommandRow { "UnknownCommand", "fly", "fly: no such command; help lists them" },
        CommandRow { "UnknownStation", "@9 status", "no such station; try @1 status" },
        CommandRow { "StationAlone", "@2", "expected a command behind the station" },
        CommandRow { "MissingArgument", "get", "usage: get REGISTER: its value" },
        CommandRow { "UnknownRegister", "get F4.29",
                     "F4.29: no such register; try F0.3, Fc.13, D0, CW, FRE, SW, FU, 0xF003" },
        CommandRow { "WriteOnly", "get CW", "CW: write only" },
        CommandRow { "HoldOfWriteOnly", "hold CW 1", "CW: write only" },
        CommandRow { "FaultWithoutARule", "fault",
                     "usage: fault KEY = VALUE, ...: add a rule, with the keys of a fault file" },
        CommandRow { "TooManyVolts", "mains 1000.1", "1000.1: expected a number from 0 to 1000" },
        CommandRow { "NegativeVolts", "mains -0.1", "-0.1: expected a number from 0 to 1000" },
        CommandRow { "TooHot", "ambient 200.1", "200.1: expected a number from -40 to 200" },
        CommandRow { "TooCold", "ambient -41", "-41: expected a number from -40 to 200" },
        CommandRow { "ReadOnly", "set D0 1", "D0: read only; hold shows a value of your own" },
        CommandRow { "ValueTooLarge", "set F0.0 65536",
                     "65536: expected a value from 0 to 65535, or 0x0000 to 0xFFFF" },
        CommandRow { "NegativeValue", "set F0.0 -1",
                     "-1: expected a value from 0 to 65535, or 0x0000 to 0xFFFF" },
        CommandRow { "TrailingLetters", "hold D0 101x",
                     "101x: expected a value from 0 to 65535, or 0x0000 to 0xFFFF" },
        CommandRow { "TwoPrefixes", "hold D0 0x0x10",
                     "0x0x10: expected a value from 0 to 65535, or 0x0000 to 0xFFFF" },
        CommandRow { "StationWithLetters", "@2x status", "no such station; try @1 status" },
        CommandRow { "HexadecimalVolts", "mains 0x10", "0x10: expected a number from 0 to 1000" },
        CommandRow { "Exponent", "power-cycle 1e3", "1e3: expected a number from 0 to 3600000" },
        CommandRow { "OutsideTheLimits", "set F8.4 481", "481: outside the limits of F8.4" },
        CommandRow { "UnknownFault", "trip gremlin",
                     "gremlin: no such fault; expected overcurrent, overvoltage, undervoltage, "
                     "overheat or communication-loss" },
        CommandRow { "NoNumber", "mains high", "high: expected a number from 0 to 1000" },
        CommandRow { "BadRule", "fault kind = \"delay\"",
                     "rule:1: kind: a delay needs duration_ms" }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(JsonAnswers, QuoteWhatNeedsIt)
{
    EXPECT_EQ(jsonText("a\"b\\c\n"), R"("a\"b\\c\u000a")");
    EXPECT_EQ(jsonText(std::string("\0\x1F\x7F", 3)), "\"\\u0000\\u001f\x7F\"");
}

TEST(JsonAnswers, AreUtf8WhateverTheBytes)
{
    const std::string none = "\xEF\xBF\xBD";

    EXPECT_EQ(jsonText("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x94\x8C"),
              "\"\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x94\x8C\"");
    EXPECT_EQ(jsonText("\xFF"
                       "a\x80"),
              '"' + none + 'a' + none + '"');
    EXPECT_EQ(jsonText("cut \xE2\x82"), "\"cut " + none + none + '"');
    EXPECT_EQ(jsonText("\xC0\xAF"), '"' + none + none + '"'); // a "/" in two bytes
    EXPECT_EQ(jsonText("\xED\xA0\x80"), '"' + none + none + none + '"'); // half of a pair
    EXPECT_EQ(jsonText("\xF4\x90\x80\x80"), '"' + none + none + none + none + '"');
}

TEST(JsonAnswers, KeepTextOfEveryLength)
{
    EXPECT_EQ(jsonText("\xC3\xBC \xE2\x82\xAC \xF0\x9F\x8F\xAD"),
              "\"\xC3\xBC \xE2\x82\xAC \xF0\x9F\x8F\xAD\"");
}

TEST(JsonAnswers, NameEachByteThatIsNoText)
{
    EXPECT_EQ(jsonText("a\xFFz"), R"("a�z")");
    EXPECT_EQ(jsonText("\x80"), R"("�")") << "nothing to follow";
    EXPECT_EQ(jsonText("\xE2\x82"), R"("��")") << "cut short";
    EXPECT_EQ(jsonText("\xC3z"), R"("�z")") << "broken off";
    EXPECT_EQ(jsonText("\xC0\xAF"), R"("��")") << "longer than it has to be";
    EXPECT_EQ(jsonText("\xED\xA0\x80"), R"("���")") << "half of a pair";
    EXPECT_EQ(jsonText("\xF4\x90\x80\x80"), R"("����")") << "behind the last";
}

TEST_F(LineFixture, ReportsEventsAsJson)
{
    std::ostringstream out;
    Reporter reporter(out, true);
    cable.observe([&reporter](const LineEvent &event) { reporter.event(event); });

    ask("01 03 20 01 00 01");

    EXPECT_EQ(out.str(),
              "{\"event\":\"request\",\"frame\":1,\"time\":0.000000,"
              "\"bytes\":\"01 03 20 01 00 01 DE 0A\"}\n"
              "{\"event\":\"reply\",\"frame\":1,\"time\":0.011167,"
              "\"bytes\":\"01 03 02 00 00 B8 44\"}\n");
}

TEST_F(LineFixture, ReportsEventsAsTextOnlyWhereAskedTo)
{
    std::ostringstream out;
    Reporter reporter(out, false);
    cable.observe([&reporter](const LineEvent &event) { reporter.event(event); });

    ask("01 03 20 01 00 01");

    EXPECT_EQ(out.str(), "");
}

TEST(JsonEvents, HaveBytesOrTextWhereThereAreAny)
{
    using Kind = LineEvent::Kind;
    std::ostringstream out;
    Reporter reporter(out, true);

    reporter.event({ Kind::Damaged, 3, Micros(1500000), { 0x01, 0xAB }, {} });
    reporter.event({ Kind::Fault, 3, Micros(1500000), {}, "drop-reply" });
    reporter.event({ Kind::NoReply, 3, Micros(2500000), {}, {} });
    reporter.event({ Kind::Plug, 3, Micros(4000000), {}, "unplugged" });

    EXPECT_EQ(out.str(),
              "{\"event\":\"damaged-request\",\"frame\":3,\"time\":1.500000,\"bytes\":\"01 AB\"}\n"
              "{\"event\":\"fault\",\"frame\":3,\"time\":1.500000,\"text\":\"drop-reply\"}\n"
              "{\"event\":\"no-reply\",\"frame\":3,\"time\":2.500000}\n"
              "{\"event\":\"plug\",\"frame\":3,\"time\":4.000000,\"text\":\"unplugged\"}\n");
}

TEST_F(LineFixture, AnswersCommandsAsJson)
{
    std::ostringstream out;
    Reporter reporter(out, true);
    Commands commands(bus, cable, clock, reporter);

    commands.run("set F0.1 5");
    commands.run("fly");
    commands.run("@2 trip overheat");
    commands.run("status");

    EXPECT_EQ(
        out.str(),
        "{\"event\":\"answer\",\"ok\":true,\"text\":\"\"}\n"
        "{\"event\":\"answer\",\"ok\":false,"
        "\"text\":\"fly: no such command; help lists them\"}\n"
        "{\"event\":\"answer\",\"ok\":true,\"text\":\"\"}\n"
        "{\"event\":\"status\",\"station\":1,\"state\":\"stopped\",\"hertz\":0.00,"
        "\"amperes\":0.0,\"volts\":0,\"link\":566,\"celsius\":25.0,\"fault\":\"none\"}\n"
        "{\"event\":\"status\",\"station\":2,\"state\":\"fault\",\"hertz\":0.00,"
        "\"amperes\":0.0,\"volts\":0,\"link\":566,\"celsius\":25.0,\"fault\":\"overheat\"}\n");
}

TEST_F(LineFixture, ShowsEventsAsTextWhereAskedTo)
{
    std::ostringstream out;
    Reporter reporter(out, false, true);
    cable.observe([&reporter](const LineEvent &event) { reporter.event(event); });

    ask("01 03 20 01 00 01");

    EXPECT_EQ(out.str(), "0.000 1 > 01 03 20 01 00 01 DE 0A\n0.011 1 < 01 03 02 00 00 B8 44\n");
}
