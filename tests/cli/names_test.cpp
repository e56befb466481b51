// SPDX-License-Identifier: MIT
// What a drive says, in words.
#include "bench.h"
#include "terminal_process.h"

#include <gtest/gtest.h>

namespace {

const std::string station = "[[station]]\\naddress = 1\\n";

void writePlant(Bench &bench, const std::string &text)
{
    bench.run("printf '" + text + "' >plant.toml");
}

} // namespace

TEST(Meaning, StatesAndFaultsOfTheSimulatedInverterAreWords)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold SW 19");
    bench.tell("hold FU 4");

    EXPECT_EQ(bench.run("dx4 get --names SW FU").out,
              "1  SW 0 (0x2000)        19  0x0013  Status word 0x0013  ready, running, at set "
              "frequency\n"
              "1  FU 0 (0x2001)         4  0x0004  Fault code 4  overheat\n");
    EXPECT_NE(bench.run("dx4 get --json --names SW")
                  .out.find("\"meaning\":\"ready, running, at set frequency\""),
              std::string::npos);
}

TEST(Meaning, UnknownBitsAndCodesAreNumbers)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold SW 4097");
    bench.tell("hold FU 99");

    const std::string out = bench.run("dx4 get --names SW FU").out;

    EXPECT_NE(out.find("ready, bit 12\n"), std::string::npos) << out;
    EXPECT_NE(out.find("Fault code 99\n"), std::string::npos) << out;
}

TEST(Meaning, WordsOfTheConfigurationReplaceThoseOfTheSimulatedInverter)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold SW 3");
    bench.tell("hold FU 0x11");
    writePlant(bench, "[states]\\n0 = \"mains on\"\\n[faults]\\n0x11 = \"door open\"\\n" + station);

    EXPECT_EQ(bench.run("dx4 get --config plant.toml SW FU").out,
              "1  SW 0 (0x2000)         3  0x0003  mains on, bit 1\n"
              "1  FU 0 (0x2001)        17  0x0011  door open\n");
    EXPECT_EQ(bench.run("dx4 get --config plant.toml --names SW").out,
              "1  SW 0 (0x2000)         3  0x0003  Status word 0x0003  mains on, bit 1\n");
}

TEST(Meaning, WrongTablesAreNamedWithTheirLine)
{
    Bench bench;
    writePlant(
        bench,
        "[states]\\n16 = \"x\"\\n[faults]\\n4 = 1\\nheat = \"x\"\\n5 = \"a\"\\n0x5 = \"b\"\\n"
            + station);

    const Printed printed = bench.run("dx4 get --config plant.toml SW");

    EXPECT_EQ(printed.code, 2);
    EXPECT_EQ(printed.err,
              "dx4 get: plant.toml:2: 16: expected a number from 0 to 15\n"
              "dx4 get: plant.toml:4: 4: expected a text such as \"overheat\"\n"
              "dx4 get: plant.toml:5: heat: expected a number from 0 to 65535\n"
              "dx4 get: plant.toml:6: 5: number 5 stands here twice\n");
}

TEST(Meaning, LiveTableHasItBelowTheValue)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold FU 4");

    TerminalProcess watch(bench.shell("exec dx4 watch --names FU SW", "TERM=xterm NO_COLOR=1"));

    ASSERT_TRUE(watch.waitForText("overheat"));
    EXPECT_NE(watch.screen().line(1).find("Fault code"), std::string::npos);
    EXPECT_EQ(watch.screen().line(2), "        overheat");
    watch.type("\x03");
    EXPECT_EQ(watch.wait(), 0);
}

TEST(Meaning, CsvHasAColumnForIt)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold FU 4");

    const std::string out = bench.run("dx4 watch --csv --names --rounds 1 FU").out;

    EXPECT_NE(out.find(",scaled,unit,meaning\n"), std::string::npos) << out;
    EXPECT_NE(out.find(",1,FU,0,0x2001,4,ok,Fault code,4,,overheat\n"), std::string::npos) << out;
}
