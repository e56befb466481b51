// SPDX-License-Identifier: MIT
// Several commands in one call.
#include "bench.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

void writeFile(Bench &bench, const std::string &name, const std::string &text)
{
    bench.run("cat >" + name + " <<'END'\n" + text + "END");
}

const std::string plant = "[stop]\ncontrol_word = 0\n[[station]]\naddress = 1\n"
                          "[[station.register]]\nat = \"F 8.2\"\nname = \"rise time\"\n"
                          "unit = \"s\"\nscale = 0.1\ndecimals = 1\n"
                          "[[station.register]]\nat = \"F 8.3\"\nname = \"both\"\n"
                          "[[station]]\naddress = 2\n"
                          "[[station.register]]\nat = \"F 8.3\"\nname = \"both\"\n";

} // namespace

TEST(Settings, SeveralAreWrittenInTheirOrder)
{
    Bench bench;
    bench.serve("1");

    const Printed printed = bench.run("dx4 set 'FRE 3000' 'F 8.2' 20 15 'CW 0'");

    EXPECT_EQ(printed.out,
              "1  FRE 0 (0x1002)     3000  0x0BB8  confirmed\n"
              "1  F 8.2 (0xF802)       20  0x0014  confirmed\n"
              "1  F 8.3 (0xF803)       15  0x000F  confirmed\n"
              "1  CW 0 (0x1001)         0  0x0000  confirmed\n");
    EXPECT_EQ(printed.code, 0) << printed.err;
}

TEST(Settings, NothingIsWrittenWhereOneIsWrong)
{
    Bench bench;
    bench.serve("1");

    const Printed printed = bench.run("dx4 set 'F 8.2 20' 'D 4 1'; dx4 get F 8.2");

    EXPECT_EQ(printed.out, "1  F 8.2 (0xF802)       50  0x0032\n");
}

TEST(Settings, NamesOfTheConfigurationTakeQuantities)
{
    Bench bench;
    bench.serve("1,2");
    writeFile(bench, "plant.toml", plant);

    EXPECT_EQ(bench.run("dx4 set --config plant.toml 'rise time=2.5' 2:both=7").out,
              "1  F 8.2 (0xF802)       25  0x0019  rise time 2.5 s  confirmed\n"
              "2  F 8.3 (0xF803)        7  0x0007  both 7  confirmed\n");
}

TEST(Settings, NamesThatAreUnknownOrOfSeveralStationsAreRefused)
{
    Bench bench;
    bench.serve("1,2");
    writeFile(bench, "plant.toml", plant);

    EXPECT_EQ(bench.run("dx4 set --config plant.toml both=7").err,
              "dx4 set: \"both\" is a register of several stations; write which, such as "
              "1:both=1\n");
    EXPECT_EQ(bench.run("dx4 set --config plant.toml 'rise tme=1'").err,
              "dx4 set: the configuration has no register called \"rise tme\"; did you mean "
              "\"rise time\"?\n");
    EXPECT_EQ(bench.run("dx4 set --config plant.toml 'rise time=9999'").code, 2);
    EXPECT_EQ(bench.run("dx4 set speed=1").err,
              "dx4 set: \"speed\": a name needs a configuration that has it; name a file with "
              "--config\n");
}

TEST(Batch, RunsCommandsInTheirOrderAndPassesCommentsOver)
{
    Bench bench;
    bench.serve("1");
    writeFile(bench, "start.txt",
              "# ramps\nset F 8.2 20 # s/10\n\n  get F 8.2\nwait 10\nset FRE 3000\nstop\n");

    const Printed printed = bench.run("dx4 batch start.txt && dx4 batch - <start.txt");

    const std::string once = "  F 8.2 (0xF802)       20  0x0014\n"
                             "1  FRE 0 (0x1002)     3000  0x0BB8  confirmed\n"
                             "1  CW 0 (0x1001)         0  0x0000  confirmed\n";
    EXPECT_EQ(printed.out,
              "1  F 8.2 (0xF802)       20  0x0014  confirmed\n1" + once
                  + "1  F 8.2 (0xF802)       20  0x0014  held already\n1" + once);
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(printed.code, 0);
}

TEST(Batch, WrongLinesAreAllToldBeforeAnythingIsSent)
{
    Bench bench;
    bench.serve("1");
    writeFile(bench, "start.txt", "set F 8.2 20\nwat 5\nset D 4 1\nwait x\nstop 300\n");

    const Printed printed = bench.run("dx4 batch start.txt; echo $?; dx4 get F 8.2");

    EXPECT_EQ(printed.out, "2\n1  F 8.2 (0xF802)       50  0x0032\n");
    EXPECT_NE(printed.err.find("dx4 batch: start.txt:2: no command \"wat\"; a file has set, get, "
                               "wait, stop; did you mean \"wait\"?\n"),
              std::string::npos)
        << printed.err;
    EXPECT_NE(printed.err.find("start.txt:3: "), std::string::npos);
    EXPECT_NE(printed.err.find("start.txt:4: \"x\" is no time"), std::string::npos);
    EXPECT_NE(printed.err.find("start.txt:5: no station \"300\""), std::string::npos);
}

TEST(Batch, EndsAtTheFirstFailureUnlessItIsToldToGoOn)
{
    Bench bench;
    bench.serve("1");
    writeFile(bench, "start.txt", "get 2:SW\nget SW\n");

    const Printed ended = bench.run("dx4 batch --timeout 20 --retries 0 start.txt");
    const Printed kept = bench.run("dx4 batch --timeout 20 --retries 0 --keep-going start.txt");

    EXPECT_EQ(ended.code, 4);
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(ended.err.find("dx4 batch: start.txt:1: station 2, SW 0 (0x2000): "), 0U)
        << ended.err;
    EXPECT_EQ(kept.code, 4);
    EXPECT_EQ(kept.out, "1  SW 0 (0x2000)         1  0x0001\n");
}

TEST(Batch, EndedByASignalSendsTheConfiguredStop)
{
    Bench bench;
    bench.serve("1");
    writeFile(bench, "plant.toml", "[stop]\ncontrol_word = 0\n[[station]]\naddress = 1\n");
    writeFile(bench, "start.txt", "set FRE 3000\nset CW 1\nwait 86400000\n");
    ChildProcess batch(bench.shell("exec dx4 batch --config plant.toml start.txt 2>talk.txt"));
    batch.readLine();
    EXPECT_EQ(batch.readLine(), "1  CW 0 (0x1001)         1  0x0001  confirmed");

    batch.signal(SIGTERM);

    batch.readAll();
    EXPECT_EQ(batch.wait(), 130);
    EXPECT_EQ(contentOf(bench.folder() + "/talk.txt"),
              "dx4 batch: start.txt:3: interrupted\ndx4 batch: station 1 stopped\n");
}

TEST(Batch, FailureBehindACommandSendsTheConfiguredStop)
{
    Bench bench;
    bench.serve("1");
    writeFile(bench, "plant.toml", "[stop]\ncontrol_word = 0\n[[station]]\naddress = 1\n");
    writeFile(bench, "start.txt", "set CW 1\nget 2:SW\nset CW 0\n");

    const Printed printed =
        bench.run("dx4 batch --config plant.toml --timeout 20 --retries 0 start.txt");

    EXPECT_EQ(printed.code, 4);
    EXPECT_NE(printed.err.find("dx4 batch: station 1 stopped\n"), std::string::npos) << printed.err;
}
