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

TEST(Help, NamesTheExitCodesAsTheManualDoes)
{
    Bench bench;

    const std::string help = bench.run("dx4 --help").out;

    EXPECT_NE(help.find("1 driver or file, 2 usage, 3 port or line, 4 no reply, 5 damaged,\n"
                        "6 foreign, 7 refused, 8 values differ"),
              std::string::npos)
        << help;
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

TEST(UsualConfiguration, IsFoundInTheFoldersOfTheUserAndOfTheMachine)
{
    Bench bench;
    bench.serve("1");
    bench.run("mkdir -p 'my own/dx4' all/dx4");
    bench.run(
        "printf '[faults]\\n0 = \"mine\"\\n[[station]]\\naddress = 1\\n' >'my own/dx4/dx4.toml'");
    bench.run("printf '[faults]\\n0 = \"ours\"\\n[[station]]\\naddress = 1\\n' >all/dx4/dx4.toml");
    bench.run("cp all/dx4/dx4.toml dx4.toml; mkdir none");
    const std::string unset = "unset DX4_CONFIG; export XDG_CONFIG_DIRS=\"$PWD/all\"; ";

    const std::string own = bench.run(unset + "XDG_CONFIG_HOME=\"$PWD/my own\" dx4 get FU").out;
    const std::string all = bench.run(unset + "XDG_CONFIG_HOME=\"$PWD/none\" dx4 get FU").out;
    const std::string here =
        bench.run("unset DX4_CONFIG; XDG_CONFIG_HOME=/none XDG_CONFIG_DIRS=/none dx4 get FU").out;

    EXPECT_NE(own.find("mine"), std::string::npos) << own;
    EXPECT_NE(all.find("ours"), std::string::npos) << all;
    EXPECT_EQ(here.find("ours"), std::string::npos) << "the working folder is not searched";
}

TEST(UsualConfiguration, WrongOneIsAnErrorThatSaysHowToGoWithout)
{
    Bench bench;
    bench.serve("1");
    bench.run("mkdir -p conf/dx4; echo 'nonsense' >conf/dx4/dx4.toml");

    const Printed printed = bench.run("unset DX4_CONFIG; XDG_CONFIG_HOME=\"$PWD/conf\" dx4 get FU");

    EXPECT_EQ(printed.code, 2);
    EXPECT_EQ(printed.out, "");
    EXPECT_NE(printed.err.find("is the usual configuration; DX4_CONFIG= goes without one"),
              std::string::npos)
        << printed.err;
}

TEST(Notices, LateStationIsTold)
{
    Bench bench;
    bench.serve("1");
    bench.tell("fault kind = \"delay\", duration_ms = 120");
    const std::string late = "station 1 answers later than the response timeout of 60 ms";

    const Printed watched = bench.run("dx4 watch --csv --timeout 60 --rounds 5 D 0-3 SW F 8.2-8.3");
    const Printed asJson = bench.run("dx4 watch --json --timeout 60 --rounds 5 D 0-3 SW F 8.2-8.3");

    EXPECT_NE(watched.err.find("dx4 watch: " + late), std::string::npos) << watched.err;
    EXPECT_NE(asJson.out.find("{\"event\":\"notice\",\"text\":\"" + late), std::string::npos)
        << asJson.out << asJson.err;
}

TEST(ScanSettings, TriesEachAndSaysWhatItFound)
{
    Bench bench;
    bench.serve("1,2");

    const Printed printed =
        bench.run("dx4 scan --timeout 30 --speeds 9600,19200 --parities n,E --to 2");

    EXPECT_EQ(printed.code, 0) << printed.err;
    EXPECT_EQ(printed.out.find("9600 8N1, station 1: status word 0x0001\n"), 0U) << printed.out;
    // A pseudo-terminal has no parity.
    const std::string summary = "9600 8N1: stations 1, 2\n9600 8E1: not taken by the port\n"
                                "19200 8N1: stations 1, 2\n19200 8E1: not taken by the port\n";
    EXPECT_NE(printed.out.find(summary), std::string::npos) << printed.out;
    EXPECT_EQ(printed.err, "") << "no progress where it is no terminal";
}

TEST(ScanSettings, NoiseIsNoStation)
{
    Bench bench;
    bench.fake({ "01 03 02 00 11 00 00" });

    const Printed printed = bench.run("dx4 scan --timeout 30 --speeds 9600 --to 1");

    EXPECT_EQ(printed.code, 4);
    EXPECT_EQ(printed.out, "9600 8N1: nothing\n");
}

TEST(ScanSettings, WrongListsAreRefused)
{
    Bench bench;

    EXPECT_EQ(bench.run("dx4 scan --speeds 9600,fast").err,
              "dx4 scan: --speeds: \"fast\" is no speed; write 300 to 4000000 bit/s between "
              "commas, such as 9600,19200\n");
    EXPECT_EQ(bench.run("dx4 scan --parities X").err,
              "dx4 scan: --parities: \"X\" is no parity; write N, E and O between commas\n");
    EXPECT_EQ(bench.run("dx4 scan --all-settings --speed 9600").code, 2);
}

TEST(RawRegisters, AreReadAndWrittenAsTheTypeThatCoversThem)
{
    Bench bench;
    bench.serve("1,2");

    const Printed printed =
        bench.run("dx4 set @0x1002 3000 && dx4 get @0x2000 2:@0xF802-0xF803 && "
                  "dx4 watch --csv --rounds 1 @8193 | tail -n 1 | cut -d, -f2-6");

    EXPECT_EQ(printed.out,
              "1  FRE 0 (0x1002)     3000  0x0BB8  confirmed\n"
              "1  SW 0 (0x2000)         1  0x0001\n"
              "2  F 8.2 (0xF802)       50  0x0032\n"
              "2  F 8.3 (0xF803)       50  0x0032\n"
              "1,FU,0,0x2001,0\n");
    EXPECT_EQ(printed.err, "");
}

TEST(RawRegisters, ThatNoTypeCoversAreRefused)
{
    Bench bench;
    bench.serve("1");

    EXPECT_EQ(bench.run("dx4 get @0x3000").err,
              "dx4 get: \"@0x3000\": no register type covers that; \"dx4 types\" lists them\n");
    EXPECT_EQ(bench.run("dx4 get @x").err,
              "dx4 get: \"@x\" is no register of the wire; write @0x2000 or 2:@0xD000-0xD003\n");
    EXPECT_EQ(bench.run("dx4 get 300:@0x2000").err,
              "dx4 get: no station 300; stations are 1 to 247\n");
    EXPECT_EQ(bench.run("dx4 get @0x1001").code, 2);
}

TEST(Pairs, AreOneNumberWithEitherHalfFirst)
{
    Bench bench;
    bench.serve("1");
    bench.run("dx4 set F 0.0 0xFFFF 0xFFFE && dx4 set F 0.2 0x4247 0xEB85");

    const Printed printed = bench.run(
        "dx4 get --as u32 F 0.0-0.1; dx4 get --as i32 F 0.0-0.1; dx4 get --as f32 F 0.2-0.3; "
        "dx4 get --as u32 --order low F 0.0-0.3; dx4 get --json --as i32 F 0.0-0.1");

    EXPECT_EQ(printed.out,
              "1  F 0.0 (0xF000)   4294967294  0xFFFFFFFE\n"
              "1  F 0.0 (0xF000)       -2  0xFFFFFFFE\n"
              "1  F 0.2 (0xF002)    49.98  0x4247EB85\n"
              "1  F 0.0 (0xF000)   4294901759  0xFFFEFFFF\n"
              "1  F 0.2 (0xF002)   3951379015  0xEB854247\n"
              "{\"register\":61440,\"station\":1,\"text\":\"0.0\",\"type\":\"F\",\"value\":-2}\n");
}

TEST(Pairs, AreWatchedAndSampled)
{
    Bench bench;
    bench.serve("1");
    bench.run("dx4 set F 0.0 1 2");

    const Printed printed = bench.run("dx4 watch --csv --as u32 --rounds 1 F 0.0-0.1");

    EXPECT_NE(printed.out.find(",1,F,0.0,0xF000,65538,ok,"), std::string::npos) << printed.out;
}

TEST(Pairs, ThatAreNotWholeAreRefused)
{
    Bench bench;
    bench.serve("1");

    EXPECT_EQ(bench.run("dx4 get --as u32 D 0-2").err,
              "dx4 get: --as takes two registers per number, and D 0 (0xD000) begins a run of 3; "
              "write an even number, such as D 0-1\n");
    EXPECT_EQ(bench.run("dx4 get --order low D 0-1").err,
              "dx4 get: --order goes with --as u32, i32 or f32\n");
    EXPECT_EQ(bench.run("dx4 watch --as u32 --block 1 D 0-1").code, 2);
}
