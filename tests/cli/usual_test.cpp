// SPDX-License-Identifier: MIT
// What every command line tool has: help by its name, a configuration by a variable, notices.
#include "bench.h"

#include <gtest/gtest.h>

#include <csignal>

TEST(Help, OfACommandIsWhatTheCommandItselfPrints)
{
    Bench bench;

    EXPECT_EQ(bench.run("dx4 help scan").out, bench.run("dx4 scan --help").out);
    EXPECT_EQ(bench.run("dx4 help frames read").out, bench.run("dx4 frames read --help").out);
    EXPECT_EQ(bench.run("dx4 help").out, bench.run("dx4 --help").out);
    EXPECT_EQ(bench.run("dx4 help").code, 0);
}

TEST(Help, OfAnUnknownCommandNamesTheNearest)
{
    Bench bench;

    const Printed printed = bench.run("dx4 help scn");

    EXPECT_EQ(printed.code, 2);
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "dx4: no command \"scn\"; did you mean \"scan\"? See dx4 --help\n");
}

TEST(ConfigurationVariable, NamesTheFileWhereNoOptionDoes)
{
    Bench bench;
    bench.serve("1");
    bench.run("printf '[faults]\\n0 = \"all well\"\\n[[station]]\\naddress = 1\\n' >plant.toml");
    bench.run("printf '[faults]\\n0 = \"no news\"\\n[[station]]\\naddress = 1\\n' >other.toml");

    EXPECT_NE(bench.run("DX4_CONFIG=plant.toml dx4 get FU").out.find("all well"),
              std::string::npos);
    EXPECT_NE(bench.run("DX4_CONFIG=plant.toml dx4 get --config other.toml FU").out.find("no news"),
              std::string::npos);
    EXPECT_EQ(bench.run("DX4_CONFIG= dx4 get FU").code, 0);
}

TEST(ConfigurationVariable, FileThatIsMissingIsAnError)
{
    Bench bench;
    bench.serve("1");

    const Printed printed = bench.run("DX4_CONFIG=gone.toml dx4 get FU");

    EXPECT_EQ(printed.code, 2);
    EXPECT_EQ(printed.out, "");
    EXPECT_NE(printed.err.find("gone.toml is named by the variable DX4_CONFIG"), std::string::npos)
        << printed.err;
}

TEST(Notices, LateStationIsTold)
{
    Bench bench;
    bench.serve("1");
    bench.tell("fault kind = \"delay\", duration_ms = 120");
    const std::string late = "station 1 answers later than the response timeout of 60 ms";

    const Printed watched = bench.run("dx4 watch --csv --timeout 60 --rounds 12 SW");
    const Printed asJson = bench.run("dx4 watch --json --timeout 60 --rounds 12 SW");

    EXPECT_NE(watched.err.find("dx4 watch: " + late), std::string::npos) << watched.err;
    EXPECT_NE(asJson.out.find("{\"event\":\"notice\",\"text\":\"" + late), std::string::npos)
        << asJson.out << asJson.err;
}
