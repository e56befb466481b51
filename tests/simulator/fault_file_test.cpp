// SPDX-License-Identifier: MIT
// Fault rules as TOML: every key, and messages that name the line.
#include "simulator/fault_file.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

struct ErrorRow {
    const char *name;
    const char *text;
    const char *error;
};

class FaultFileErrors : public ::testing::TestWithParam<ErrorRow> { };

} // namespace

TEST(FaultFiles, EmptyTextIsAGoodLine)
{
    const FaultFile file = parseFaults("", "f.toml");

    EXPECT_TRUE(file.good());
    EXPECT_TRUE(file.rules.empty());
    EXPECT_EQ(file.seed, std::nullopt);
}

TEST(FaultFiles, EveryConditionIsRead)
{
    const FaultFile file = parseFaults("seed = 7\n"
                                       "[[fault]]\n"
                                       "kind = \"drop-reply\"\n"
                                       "frame = 3\n"
                                       "every = 4\n"
                                       "probability = 0.5\n"
                                       "registers = \"D0-D5\"\n"
                                       "station = 2\n"
                                       "from_ms = 100\n"
                                       "until_ms = 200\n"
                                       "times = 9\n",
                                       "f.toml");

    ASSERT_EQ(file.error, "");
    ASSERT_EQ(file.rules.size(), 1U);
    const FaultRule &rule = file.rules.front();
    EXPECT_EQ(file.seed, 7U);
    EXPECT_EQ(rule.kind, FaultKind::DropReply);
    EXPECT_EQ(rule.frame, 3);
    EXPECT_EQ(rule.every, 4);
    EXPECT_EQ(rule.probability, 0.5);
    EXPECT_EQ(rule.registers->first, 0xD000);
    EXPECT_EQ(rule.registers->last, 0xD005);
    EXPECT_EQ(rule.station, 2);
    EXPECT_EQ(rule.from, Micros(100000));
    EXPECT_EQ(rule.until, Micros(200000));
    EXPECT_EQ(rule.times, 9);
}

TEST(FaultFiles, EveryEffectIsRead)
{
    const FaultFile file = parseFaults("[[fault]]\n"
                                       "kind = \"junk\"\n"
                                       "place = \"inside\"\n"
                                       "side = \"request\"\n"
                                       "count = 5\n"
                                       "[[fault]]\n"
                                       "kind = \"exception\"\n"
                                       "value = 6\n"
                                       "[[fault]]\n"
                                       "kind = \"delay\"\n"
                                       "duration_ms = 250\n",
                                       "f.toml");

    ASSERT_EQ(file.error, "");
    ASSERT_EQ(file.rules.size(), 3U);
    EXPECT_EQ(file.rules[0].place, JunkPlace::Inside);
    EXPECT_EQ(file.rules[0].side, Side::Request);
    EXPECT_EQ(file.rules[0].count, 5);
    EXPECT_EQ(file.rules[1].value, 6);
    EXPECT_EQ(file.rules[2].duration, Micros(250000));
}

TEST(FaultFiles, RangeMayNameRegistersThatDoNotExist)
{
    const FaultFile file =
        parseFaults("[[fault]]\nkind = \"echo\"\nregisters = \"0xF000-0xF0FF\"\n", "f.toml");

    ASSERT_EQ(file.error, "");
    EXPECT_EQ(file.rules.front().registers->last, 0xF0FF);
}

TEST(FaultFiles, MissingFileIsAnError)
{
    const FaultFile file = readFaultFile("no-such-file.toml");

    EXPECT_EQ(file.error, "no-such-file.toml: No such file or directory");
}

TEST_P(FaultFileErrors, NameTheLineAndWhatWasExpected)
{
    const FaultFile file = parseFaults(GetParam().text, "f.toml");

    EXPECT_EQ(file.error.substr(0, std::string(GetParam().error).size()), GetParam().error);
    EXPECT_FALSE(file.good());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FaultFileErrors,
    ::testing::Values(
        ErrorRow { "BrokenToml", "seed = 1\n[[fault]\n", "f.toml:2: " },
        ErrorRow { "UnknownTopKey", "seed = 1\nspeed = 2\n",
                   "f.toml:2: speed: expected seed or [[fault]]" },
        ErrorRow { "FaultIsATable", "[fault]\nkind = \"echo\"\n",
                   "f.toml:1: fault: expected [[fault]]" },
        ErrorRow { "SeedBelowZero", "seed = -1\n", "f.toml:1: seed: expected a whole number" },
        ErrorRow { "NoKind", "\n[[fault]]\nframe = 1\n",
                   "f.toml:2: fault: expected a key \"kind\"" },
        ErrorRow { "UnknownKind", "[[fault]]\nkind = \"gremlin\"\n",
                   "f.toml:2: kind: no such fault; expected one of drop-request, drop-reply" },
        ErrorRow { "KindIsANumber", "[[fault]]\nkind = 3\n", "f.toml:2: kind: expected one of" },
        ErrorRow { "UnknownKey", "[[fault]]\nkind = \"echo\"\nwhen = 1\n",
                   "f.toml:3: when: no such key for echo" },
        ErrorRow { "KeyOfAnotherKind", "[[fault]]\nkind = \"echo\"\n\nvalue = 1\n",
                   "f.toml:4: value: no such key for echo" },
        ErrorRow { "FrameZero", "[[fault]]\nkind = \"echo\"\nframe = 0\n",
                   "f.toml:3: frame: expected a whole number from 1 to 1000000000" },
        ErrorRow { "ProbabilityAboveOne", "[[fault]]\nkind = \"echo\"\nprobability = 1.5\n",
                   "f.toml:3: probability: expected a number from 0 to 1" },
        ErrorRow { "RangeBackwards", "[[fault]]\nkind = \"echo\"\nregisters = \"D5-D0\"\n",
                   "f.toml:3: registers: expected a register or a range" },
        ErrorRow { "NumberWithLetters", "[[fault]]\nkind = \"echo\"\nregisters = \"0x10g\"\n",
                   "f.toml:3: registers: expected a register or a range" },
        ErrorRow { "NoRegister", "[[fault]]\nkind = \"echo\"\nregisters = \"Q1\"\n",
                   "f.toml:3: registers: expected a register or a range" },
        ErrorRow { "WrongSide", "[[fault]]\nkind = \"break-crc\"\nside = \"both\"\n",
                   "f.toml:3: side: expected \"request\" or \"reply\"" },
        ErrorRow { "WrongPlace", "[[fault]]\nkind = \"junk\"\nplace = \"behind\"\n",
                   "f.toml:3: place: expected \"before\", \"inside\" or \"after\"" },
        ErrorRow { "DelayWithoutDuration", "[[fault]]\nkind = \"delay\"\n",
                   "f.toml:2: kind: a delay needs duration_ms" }),
    [](const ::testing::TestParamInfo<ErrorRow> &row) { return row.param.name; });
