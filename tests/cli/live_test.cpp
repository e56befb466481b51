// SPDX-License-Identifier: MIT
// What a user sees at a terminal of 80 columns.
#include "bench.h"
#include "terminal_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

namespace {

constexpr const char *ctrlC = "\x03";

std::string collapsed(const std::string &line)
{
    std::string text;
    for (const char c : line) {
        if (c != ' ' || (!text.empty() && text.back() != ' '))
            text += c;
    }
    return text;
}

/// The row of a register without its age.
std::string row(const Screen &screen, const std::string &address)
{
    const std::string line = collapsed(screen.lineWith(address));
    const std::size_t age = line.find_last_of(' ', line.rfind(" s") - 1);
    return line.substr(0, age);
}

const std::string colours = "TERM=xterm";

} // namespace

TEST(LiveTable, ShowsValuesWithNamesUnitsAndCounters)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold D0 4660");

    TerminalProcess watch(bench.shell("exec dx4 watch --names D 0-3 SW", colours));

    ASSERT_TRUE(watch.waitForText("46.60 Hz") && watch.waitForText("0x0001"));
    EXPECT_EQ(watch.screen().line(0),
              "Station Name                      Address                Value             Age");
    EXPECT_EQ(row(watch.screen(), "D 0 "), "1 Output frequency D 0 (0xD000) 46.60 Hz");
    EXPECT_EQ(row(watch.screen(), "SW 0 "), "1 Status word SW 0 (0x2000) 0x0001");
    EXPECT_TRUE(watch.waitForText("0 writes, 0 retries, 0 given up"));
    watch.type(ctrlC);
    EXPECT_EQ(watch.wait(), 0);
    EXPECT_FALSE(watch.screen().overflowed());
    EXPECT_TRUE(watch.screen().cursorIsShown());
    EXPECT_TRUE(watch.screen().linesWrap());
}

TEST(LiveTable, HighlightsAChange)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold D4 500");
    TerminalProcess watch(bench.shell("exec dx4 watch D 4", colours));
    ASSERT_TRUE(watch.waitForText(" 500 "));
    EXPECT_EQ(watch.screen().styleOf(" 500 "), "");

    bench.tell("hold D4 501");

    ASSERT_TRUE(watch.waitForText(" 501 "));
    EXPECT_EQ(watch.screen().styleOf(" 501 "), "1;32");
    EXPECT_EQ(watch.screen().lineWith("*"), "");
}

TEST(LiveTable, MarksAChangeWithAStarWithoutColours)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold D4 500");
    TerminalProcess watch(bench.shell("exec dx4 watch D 4", "TERM=xterm NO_COLOR=1"));
    ASSERT_TRUE(watch.waitForText(" 500 "));

    bench.tell("hold D4 501");

    EXPECT_TRUE(watch.waitForText("*501 "));
    watch.type(ctrlC);
    EXPECT_EQ(watch.wait(), 0);
    EXPECT_FALSE(watch.screen().everStyled());
}

TEST(LiveTable, MarksFailedAndStaleValues)
{
    Bench bench;
    bench.serve("1,2");
    TerminalProcess watch(bench.shell("exec dx4 watch --timeout 30 1:D 4 2:FU", colours));
    ASSERT_TRUE(watch.waitForText("566"));
    ASSERT_TRUE(watch.waitFor([](const Screen &screen) {
        return screen.lineWith("FU 0").find(" s") != std::string::npos;
    }));

    bench.tell("fault kind = \"drop-request\", station = 2");

    ASSERT_TRUE(watch.waitForText("failed"));
    EXPECT_EQ(watch.screen().styleOf("failed"), "1;31");
    ASSERT_TRUE(watch.waitForText("s!"));
    EXPECT_NE(watch.screen().lineWith("s!").find("FU 0"), std::string::npos);
    EXPECT_EQ(watch.screen().styleOf("s!"), "33");
    EXPECT_EQ(row(watch.screen(), "D 4 "), "1 D 4 (0xD004) 566");
}

TEST(LiveTable, KeepsValuesOfABrokenLineAndGoesOnWhenItIsBack)
{
    Bench bench;
    bench.serve("1");
    const std::filesystem::path port = bench.folder() + "/port";
    std::filesystem::create_symlink(bench.device(), port);
    TerminalProcess watch(bench.shell("exec dx4 watch --port " + port.string() + " D 4", colours));
    ASSERT_TRUE(watch.waitForText("566"));

    // The name goes first: the number of a pseudo-terminal is given anew at once, perhaps to the
    // terminal of another test, and nobody may open that as the port.
    std::filesystem::remove(port);
    bench.unplug();

    ASSERT_TRUE(watch.waitForText("broke; waiting for it"));
    ASSERT_TRUE(watch.waitForText("s!"));
    EXPECT_NE(watch.screen().lineWith("s!").find("566"), std::string::npos);
    bench.serve("1");
    std::filesystem::create_symlink(bench.device(), port);
    EXPECT_TRUE(watch.waitForText("is back"));
    EXPECT_TRUE(watch.waitFor([](const Screen &screen) { return screen.lineWith("s!").empty(); }));
    watch.type(ctrlC);
    EXPECT_EQ(watch.wait(), 0);
}

TEST(LiveTable, FitsALowWindow)
{
    Bench bench;
    bench.serve("1");

    TerminalProcess watch(bench.shell("exec dx4 watch D 0-31", colours), 12);

    ASSERT_TRUE(watch.waitForText("given up"));
    EXPECT_EQ(watch.screen().line(7), "rows 1-6 of 32; arrow and page keys move");
    EXPECT_NE(watch.screen().line(9).find("given up"), std::string::npos);
    watch.type(ctrlC);
    EXPECT_EQ(watch.wait(), 0);
}

TEST(LiveTable, MovesWithArrowAndPageKeys)
{
    Bench bench;
    bench.serve("1");
    TerminalProcess watch(bench.shell("exec dx4 watch D 0-31", colours), 12);
    ASSERT_TRUE(watch.waitForText("rows 1-6 of 32"));

    watch.type("\x1b[6~");
    EXPECT_TRUE(watch.waitForText("rows 7-12 of 32"));
    EXPECT_NE(watch.screen().line(1).find("D 6 "), std::string::npos);
    watch.type("\x1b[A");
    EXPECT_TRUE(watch.waitForText("rows 6-11 of 32"));
    watch.type("\x1b[F");
    EXPECT_TRUE(watch.waitForText("rows 27-32 of 32"));
    watch.type("\x1b[B");
    watch.type("\x1b[H");
    EXPECT_TRUE(watch.waitForText("rows 1-6 of 32"));

    watch.type(ctrlC);
    EXPECT_EQ(watch.wait(), 0);
}

TEST(LiveTable, GivesTheKeyboardBack)
{
    Bench bench;
    bench.serve("1");
    TerminalProcess shell(
        bench.shell("trap : INT; stty -a >before.txt; dx4 watch D 4; stty -a >after.txt", colours));
    ASSERT_TRUE(shell.waitForText("566"));

    shell.type(ctrlC);

    shell.wait();
    EXPECT_EQ(contentOf(bench.folder() + "/before.txt"), contentOf(bench.folder() + "/after.txt"));
}

TEST(LiveTable, KeepsNamesAndValuesInFortyColumns)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold D5 421");

    TerminalProcess watch(bench.shell("exec dx4 watch --names D 0-5 F 8.0-8.8 F 0.0-0.9", colours),
                          13, 40);

    ASSERT_TRUE(watch.waitForText("42.1  C"));
    EXPECT_EQ(watch.screen().line(0), "St  Name                   Value");
    EXPECT_EQ(watch.screen().line(1), "1   Output frequency        0.00 Hz");
    EXPECT_EQ(watch.screen().line(6), "1   Heat sink tempera      42.1  C");
    EXPECT_EQ(watch.screen().line(7), "rows 1-6 of 25; arrow and page keys move");
    EXPECT_NE((watch.screen().line(9) + ' ' + watch.screen().line(10)).find("retries, 0 given up"),
              std::string::npos);
    watch.type(ctrlC);
    EXPECT_EQ(watch.wait(), 0);
    EXPECT_FALSE(watch.screen().overflowed());
}

TEST(LiveTable, SuspendedGivesTerminalAndPortBackUntilItGoesOn)
{
    Bench bench;
    bench.serve("1");
    TerminalProcess shell(
        bench.shell("set -m; dx4 watch D 4; dx4 stop; echo code $?; read line; fg "
                    ">/dev/null; echo \"over $?\"",
                    colours),
        40);
    ASSERT_TRUE(shell.waitForText("566"));

    shell.type("\x1a");

    ASSERT_TRUE(shell.waitForText("code 0"));
    EXPECT_NE(shell.screen().lineWith("dx4 watch: suspended; " + bench.device()
                                      + " is free, drives go on as they are"),
              "");
    EXPECT_TRUE(shell.screen().cursorIsShown());
    EXPECT_TRUE(shell.screen().linesWrap());
    bench.tell("hold D4 501");
    shell.type("\n");
    EXPECT_TRUE(shell.waitForText(" 501 "));
    EXPECT_FALSE(shell.screen().cursorIsShown());
    shell.type(ctrlC);
    EXPECT_TRUE(shell.waitForText("over 0"));
    EXPECT_TRUE(shell.screen().cursorIsShown());
}

TEST(LiveTable, QuitEndsItAtOnceWithTheTerminalAsItWas)
{
    Bench bench;
    bench.serve("1");
    bench.run("printf '[stop]\\ncontrol_word = 0\\n[[station]]\\naddress = 1\\n' >plant.toml");
    TerminalProcess watch(bench.shell("exec dx4 watch --config plant.toml D 4", colours));
    ASSERT_TRUE(watch.waitForText("566"));

    watch.type("\x1c");

    EXPECT_EQ(watch.wait(), 131);
    EXPECT_NE(watch.screen().lineWith("dx4 watch: the motor of station 1 may still turn; stop it"),
              "");
    EXPECT_EQ(watch.screen().lineWith("station 1 stopped"), "");
    EXPECT_TRUE(watch.screen().cursorIsShown());
    EXPECT_TRUE(watch.screen().linesWrap());
}

TEST(LiveTable, HeldTerminalDoesNotHoldTheStop)
{
    Bench bench;
    bench.serve("1");
    bench.run("printf '[stop]\\ncontrol_word = 0\\n[[station]]\\naddress = 1\\n' >plant.toml");
    bench.run("dx4 run --frequency 30");
    TerminalProcess watch(
        bench.shell("exec dx4 watch --config plant.toml D 4 SW 2>talk.txt", colours));
    ASSERT_TRUE(watch.waitForText("0x") || watch.waitForText("566"));

    watch.type("\x13"); // Ctrl-S
    watch.signal(SIGTERM);

    EXPECT_EQ(watch.wait(), 0);
    EXPECT_EQ(contentOf(bench.folder() + "/talk.txt"), "dx4 watch: station 1 stopped\n");
    EXPECT_TRUE(watch.screen().cursorIsShown());
}

TEST(LiveTable, DumbTerminalGetsPlainLines)
{
    Bench bench;
    bench.serve("1");

    TerminalProcess watch(bench.shell("exec dx4 watch --rounds 1 D 4", "TERM=dumb"));

    EXPECT_EQ(watch.wait(), 0);
    EXPECT_NE(watch.screen().line(0).find("s  1  D 4 (0xD004)      566"), std::string::npos);
    EXPECT_FALSE(watch.screen().everStyled());
}

TEST(LiveScan, ShowsHowFarItIsAndEndsWithCtrlC)
{
    Bench bench;
    bench.serve("1");
    TerminalProcess scan(bench.shell("exec dx4 scan --timeout 20", colours));

    ASSERT_TRUE(scan.waitForText("station 1: status word 0x0001"));
    ASSERT_TRUE(scan.waitForText("] station 9, 1 found"));
    const std::string bar = scan.screen().lineWith("] station 9, 1 found");
    EXPECT_EQ(bar.rfind("[#", 0), 0U) << bar;
    scan.type(ctrlC);

    EXPECT_EQ(scan.wait(), 130);
    EXPECT_FALSE(scan.screen().overflowed());
    EXPECT_NE(scan.screen().lineWith("go on with --from"), "");
    EXPECT_EQ(scan.screen().lineWith("["), "");
}

TEST(LiveDemo, DrawsOneTableAndEndsWithTheMotorStopped)
{
    Bench bench;

    TerminalProcess demo(
        bench.shell("exec dx4 demo --seconds 2 --sim '" SIMULATOR_FILE "'", colours), 40);

    // The line shows the write that ended last; under load a parameter may end behind the stop.
    EXPECT_TRUE(demo.waitForText("stop, confirmed"));
    EXPECT_EQ(demo.wait(), 0);
    EXPECT_NE(demo.screen().lineWith("Done: "), "");
    EXPECT_FALSE(demo.screen().overflowed());
}
