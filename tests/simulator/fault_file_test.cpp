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

/// A file with one rule: its kind and one more key.
std::string ruleWith(const std::string &kind, const std::string &key)
{
    return "[[fault]]\nkind = \"" + kind + "\"\n" + key + "\n";
}

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

TEST(FaultFiles, EachKindHasItsOwnEffects)
{
    std::string taken;
    for (const FaultKind kind : allFaultKinds()) {
        taken += std::string(faultKindName(kind)) + ':';
        for (const char *key : { "side", "place", "count", "value", "duration_ms" }) {
            const FaultFile file =
                parseFaults(ruleWith(faultKindName(kind), std::string(key) + " = 5"), "f.toml");
            if (file.error.find("no such key") == std::string::npos)
                taken += std::string(" ") + key;
        }
        taken += '\n';
    }

    EXPECT_EQ(taken,
              "drop-request:\n"
              "drop-reply:\n"
              "delay: duration_ms\n"
              "flip-bits: side count\n"
              "break-crc: side\n"
              "truncate: side count\n"
              "junk: side place count\n"
              "wrong-station: side value\n"
              "wrong-function: side value\n"
              "exception: value\n"
              "echo:\n"
              "silence: duration_ms\n"
              "unplug: duration_ms\n"
              "power-cycle: duration_ms\n");
}

TEST(FaultFiles, PlacesAndSidesAreRead)
{
    const FaultFile before = parseFaults(ruleWith("junk", "place = \"before\""), "f.toml");
    const FaultFile after = parseFaults(ruleWith("junk", "place = \"after\""), "f.toml");
    const FaultFile reply = parseFaults(ruleWith("junk", "side = \"reply\""), "f.toml");

    ASSERT_EQ(before.error + after.error + reply.error, "");
    EXPECT_EQ(before.rules.front().place, JunkPlace::Before);
    EXPECT_EQ(after.rules.front().place, JunkPlace::After);
    EXPECT_EQ(reply.rules.front().side, Side::Reply);
}

TEST(FaultFiles, NumbersAreReadUpToTheirLimits)
{
    for (const std::string &text : { ruleWith("echo", "frame = 1"),
                                     ruleWith("echo", "frame = 1000000000"),
                                     ruleWith("echo", "every = 1"),
                                     ruleWith("echo", "every = 1000000000"),
                                     ruleWith("echo", "times = 1"),
                                     ruleWith("echo", "times = 1000000000"),
                                     ruleWith("echo", "probability = 0"),
                                     ruleWith("echo", "probability = 1"),
                                     ruleWith("echo", "probability = 0.0"),
                                     ruleWith("echo", "probability = 1.0"),
                                     ruleWith("echo", "station = 0"),
                                     ruleWith("echo", "station = 247"),
                                     ruleWith("echo", "from_ms = 0"),
                                     ruleWith("echo", "until_ms = 86400000"),
                                     ruleWith("junk", "count = 1"),
                                     ruleWith("junk", "count = 256"),
                                     ruleWith("wrong-station", "value = 0"),
                                     ruleWith("wrong-station", "value = 255"),
                                     ruleWith("wrong-function", "value = 0"),
                                     ruleWith("wrong-function", "value = 255"),
                                     ruleWith("exception", "value = 1"),
                                     ruleWith("exception", "value = 255"),
                                     ruleWith("delay", "duration_ms = 1"),
                                     ruleWith("silence", "duration_ms = 0"),
                                     ruleWith("echo", "registers = \"D0-D0\""),
                                     std::string("seed = 0"),
                                     std::string("seed = 9223372036854775807") }) {
        EXPECT_EQ(parseFaults(text, "f.toml").error, "") << text;
    }
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
    Limits, FaultFileErrors,
    ::testing::Values(
        ErrorRow { "EveryZero", "[[fault]]\nkind = \"echo\"\nevery = 0\n",
                   "f.toml:3: every: expected a whole number from 1 to 1000000000" },
        ErrorRow { "TimesZero", "[[fault]]\nkind = \"echo\"\ntimes = 0\n",
                   "f.toml:3: times: expected a whole number from 1 to 1000000000" },
        ErrorRow { "FrameTooLarge", "[[fault]]\nkind = \"echo\"\nframe = 1000000001\n",
                   "f.toml:3: frame: expected a whole number from 1 to 1000000000" },
        ErrorRow { "ProbabilityBelowZero", "[[fault]]\nkind = \"echo\"\nprobability = -0.1\n",
                   "f.toml:3: probability: expected a number from 0 to 1" },
        ErrorRow { "ProbabilityIsNoNumber", "[[fault]]\nkind = \"echo\"\nprobability = nan\n",
                   "f.toml:3: probability: expected a number from 0 to 1" },
        ErrorRow { "StationBelowZero", "[[fault]]\nkind = \"echo\"\nstation = -1\n",
                   "f.toml:3: station: expected a whole number from 0 to 247" },
        ErrorRow { "StationTooHigh", "[[fault]]\nkind = \"echo\"\nstation = 248\n",
                   "f.toml:3: station: expected a whole number from 0 to 247" },
        ErrorRow { "TimeBelowZero", "[[fault]]\nkind = \"echo\"\nfrom_ms = -1\n",
                   "f.toml:3: from_ms: expected a whole number from 0 to 86400000" },
        ErrorRow { "TimeAboveADay", "[[fault]]\nkind = \"echo\"\nuntil_ms = 86400001\n",
                   "f.toml:3: until_ms: expected a whole number from 0 to 86400000" },
        ErrorRow { "CountZero", "[[fault]]\nkind = \"junk\"\ncount = 0\n",
                   "f.toml:3: count: expected a whole number from 1 to 256" },
        ErrorRow { "CountAboveAFrame", "[[fault]]\nkind = \"junk\"\ncount = 257\n",
                   "f.toml:3: count: expected a whole number from 1 to 256" },
        ErrorRow { "ValueBelowZero", "[[fault]]\nkind = \"wrong-station\"\nvalue = -1\n",
                   "f.toml:3: value: expected a whole number from 0 to 255" },
        ErrorRow { "ValueAboveAByte", "[[fault]]\nkind = \"wrong-function\"\nvalue = 256\n",
                   "f.toml:3: value: expected a whole number from 0 to 255" },
        ErrorRow { "ExceptionZero", "[[fault]]\nkind = \"exception\"\nvalue = 0\n",
                   "f.toml:3: value: expected a whole number from 1 to 255" },
        ErrorRow { "RangeBeginsNowhere", "[[fault]]\nkind = \"echo\"\nregisters = \"Q1-D0\"\n",
                   "f.toml:3: registers: expected a register or a range" },
        ErrorRow { "RangeEndsNowhere", "[[fault]]\nkind = \"echo\"\nregisters = \"D0-Q1\"\n",
                   "f.toml:3: registers: expected a register or a range" },
        ErrorRow { "FaultsAreNumbers", "seed = 1\nfault = [ 1 ]\n",
                   "f.toml:2: fault: expected [[fault]]" }),
    [](const ::testing::TestParamInfo<ErrorRow> &row) { return row.param.name; });

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
