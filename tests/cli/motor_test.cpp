// SPDX-License-Identifier: MIT
// An end that may leave a motor turning says so, with the command that stops it.
#include "bench.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

const char *const running = "01 03 02 00 11 CRC";

std::string warning(const Bench &bench, const std::string &command, const std::string &options = "")
{
    return "dx4 " + command + ": the motor of station 1 may still turn; stop it with: dx4 stop "
        + options + "--port " + bench.device() + " --station 1\n";
}

std::string talk(const Bench &bench)
{
    return contentOf(bench.folder() + "/talk.txt");
}

void writePlant(Bench &bench)
{
    bench.run(
        "printf '[stop]\\ncontrol_word = 0\\nconfirm_ms = 200\\n[[station]]\\naddress = 1\\n' "
        ">plant.toml");
}

/// Interrupts a command once its first write has gone out.
int codeAfterWrite(Bench &bench, const std::string &command)
{
    ChildProcess child(bench.shell("exec " + command + " 2>talk.txt"));
    EXPECT_TRUE(bench.awaitRequests(6, 1));
    child.signal(SIGINT);
    child.readAll();
    return child.wait();
}

} // namespace

TEST(Motor, InterruptedRunWithoutAStopNamesTheCommandThatStopsIt)
{
    Bench bench;
    bench.fake({ running });

    EXPECT_EQ(codeAfterWrite(bench, "dx4 run --timeout 5000 --speed 19200"), 130);

    EXPECT_EQ(talk(bench), warning(bench, "run", "--speed 19200 "));
}

TEST(Motor, InterruptedRunWithAnUnconfirmedStopFails)
{
    Bench bench;
    bench.fake({ running });
    writePlant(bench);

    EXPECT_EQ(codeAfterWrite(bench, "dx4 run --timeout 100 --retries 50 --config plant.toml"), 1);

    EXPECT_NE(talk(bench).find("STOP NOT CONFIRMED by station 1"), std::string::npos);
    EXPECT_NE(talk(bench).find(warning(bench, "run", "--config plant.toml ")), std::string::npos);
}

TEST(Motor, CommandWhoseRepliesAreLostMayHaveStartedIt)
{
    Bench bench;
    bench.fake({ running });

    const Printed printed = bench.run("dx4 set --timeout 30 CW 1");

    EXPECT_EQ(printed.code, 4);
    EXPECT_NE(printed.err.find(warning(bench, "set")), std::string::npos) << printed.err;
}

TEST(Motor, StopThatIsNotConfirmedNamesTheCommandToRepeat)
{
    Bench bench;
    bench.fake({ running });

    const Printed printed = bench.run("dx4 stop --timeout 30");

    EXPECT_EQ(printed.code, 4);
    EXPECT_NE(printed.err.find(warning(bench, "stop")), std::string::npos) << printed.err;
}

TEST(Motor, CommandToRepeatAStopHasItsWord)
{
    Bench bench;
    bench.fake({ running });

    const Printed printed = bench.run("dx4 stop --timeout 30 --word 5");

    EXPECT_NE(printed.err.find(warning(bench, "stop", "--word 5 ")), std::string::npos)
        << printed.err;
}

TEST(Motor, StationsThatAnswerAreStoppedAheadOfTheDead)
{
    Bench bench;
    bench.serve("1,2");
    bench.run("printf '[stop]\ncontrol_word = 0\nbroadcast = true\nconfirm_ms = 300\n' "
              ">plant.toml; for i in 8 9 1 2; do "
              "printf '[[station]]\naddress = %d\n' $i >>plant.toml; done; "
              "dx4 run --config plant.toml --station 2");

    const Printed printed = bench.run("dx4 stop --config plant.toml --all --timeout 30");

    EXPECT_EQ(printed.code, 1);
    EXPECT_EQ(printed.out,
              "1  CW 0 (0x1001)         0  0x0000  Control word 0x0000  confirmed\n"
              "2  CW 0 (0x1001)         0  0x0000  Control word 0x0000  confirmed\n");
    EXPECT_NE(printed.err.find("dx4 stop: STOP NOT CONFIRMED by 2 of 4 stations\n"),
              std::string::npos)
        << printed.err;
    for (const char *dead : { "8", "9" })
        EXPECT_NE(printed.err.find("dx4 stop: the motor of station " + std::string(dead)
                                   + " may still turn; stop it with: dx4 stop --config plant.toml "
                                     "--port "
                                   + bench.device() + " --station " + dead + "\n"),
                  std::string::npos)
            << printed.err;
}

TEST(Motor, StopOfAllWithABroadcastReachesDrivesThatTheFileDoesNotName)
{
    Bench bench;
    bench.serve("1,2");
    bench.run("printf '[stop]\\ncontrol_word = 0\\nbroadcast = true\\n[[station]]\\n"
              "address = 1\\n' >plant.toml; dx4 run --station 2 --frequency 30");
    const Printed before = bench.run("dx4 get 2:SW");

    const Printed printed = bench.run("dx4 stop --config plant.toml --all");

    EXPECT_EQ(printed.code, 0) << printed.err;
    EXPECT_EQ(before.out, "2  SW 0 (0x2000)        35  0x0023\n") << "it speeds up";
    EXPECT_NE(bench.run("dx4 get 2:SW").out, before.out);
}

TEST(Motor, StartThatIsConfirmedSaysNothing)
{
    Bench bench;
    bench.serve("1");

    const Printed printed = bench.run("dx4 run --frequency 30 && dx4 set CW 1");

    EXPECT_EQ(printed.code, 0);
    EXPECT_EQ(printed.err, "");
}

TEST(Motor, CommandThatWasNotSentSaysNothing)
{
    Bench bench;
    bench.serve("1");
    bench.tell("unplug");

    const Printed printed = bench.run("dx4 run --timeout 30");

    EXPECT_EQ(printed.code, 4);
    EXPECT_EQ(printed.err.find("may still turn"), std::string::npos) << printed.err;
}
