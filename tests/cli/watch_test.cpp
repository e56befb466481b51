// SPDX-License-Identifier: MIT
// What a watch prints for a file, a spreadsheet and a script.
#include "bench.h"

#include <gtest/gtest.h>

#include <csignal>
#include <regex>
#include <sstream>

namespace {

/// The first lines that a watch prints; it is interrupted behind them.
std::vector<std::string> firstLines(Bench &bench, const std::string &command, int count)
{
    ChildProcess child(bench.shell("exec " + command));
    std::vector<std::string> lines;
    while (static_cast<int>(lines.size()) < count)
        lines.push_back(child.readLine());
    child.signal(SIGINT);
    child.readAll();
    EXPECT_EQ(child.wait(), 0);
    return lines;
}

std::string lastLine(const std::string &text)
{
    std::istringstream lines(text);
    std::string line;
    std::string last;
    while (std::getline(lines, line))
        last = line;
    return last;
}

double timeOf(const std::string &json)
{
    const std::string key = "\"time\":";
    return std::stod(json.substr(json.find(key) + key.size()));
}

const char *const clockTime = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"
                              "[+-][0-9]{2}:[0-9]{2}";

} // namespace

TEST(WatchInterval, RoundsBeginThatFarApart)
{
    Bench bench;
    bench.serve("1");

    const Printed printed = bench.run("dx4 watch --json --interval 150 --rounds 3 D 0 SW");

    EXPECT_EQ(printed.code, 0) << printed.err;
    const std::string end = lastLine(printed.out);
    EXPECT_NE(end.find("\"event\":\"end\""), std::string::npos) << printed.out;
    EXPECT_GE(timeOf(end), 0.3) << "two intervals lie between three rounds";
}

TEST(WatchInterval, InterruptDoesNotWaitForTheNextRound)
{
    Bench bench;
    bench.serve("1");

    const auto lines = firstLines(bench, "dx4 watch --csv --interval 86400000 D 4", 2);

    EXPECT_NE(lines.at(1).find(",1,D,4,0xD004,566,ok"), std::string::npos) << lines.at(1);
}

TEST(WatchClock, CsvHasTimesOfDayInPlaceOfSeconds)
{
    Bench bench;
    bench.serve("1");

    const auto lines = firstLines(bench, "dx4 watch --csv --clock D 4", 2);

    EXPECT_TRUE(std::regex_match(lines.at(1),
                                 std::regex(std::string(clockTime) + ",1,D,4,0xD004,566,ok,.*")))
        << lines.at(1);
}

TEST(WatchClock, TimesOfDayCarryTheOffsetOfTheZone)
{
    Bench bench;
    bench.serve("1");

    const auto lines = firstLines(bench, "env TZ=XYZ-5:30 dx4 watch --clock D 4", 1);

    EXPECT_TRUE(std::regex_search(lines.at(0), std::regex("^.{23}\\+05:30  1  D 4 ")))
        << lines.at(0);
}

TEST(WatchClock, JsonHasBothTimes)
{
    Bench bench;
    bench.serve("1");

    const auto lines = firstLines(bench, "dx4 watch --json --clock D 4", 1);

    EXPECT_TRUE(
        std::regex_search(lines.at(0), std::regex("\"clock\":\"" + std::string(clockTime) + "\"")))
        << lines.at(0);
    EXPECT_NE(lines.at(0).find("\"time\":"), std::string::npos);
}

TEST(WatchSamples, RowsHaveAColumnPerRegisterAtEqualTimes)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold D0 4660");

    const auto lines =
        firstLines(bench, "dx4 watch --csv --names --sample 200 --timeout 30 D 0 D 4 SW 2:FU", 4);

    EXPECT_EQ(lines.at(0),
              "time,1:D 0 Output frequency (Hz),1:D 4 DC link voltage (V),1:SW 0 Status word,"
              "2:FU 0 Fault code");
    EXPECT_EQ(lines.at(1).substr(0, 6), "0.200,");
    EXPECT_EQ(lines.at(2).substr(0, 6), "0.400,");
    EXPECT_EQ(lines.at(3), "0.600,46.60,566,1,") << "the silent station has an empty cell";
}

TEST(WatchSamples, JsonHasAnObjectPerSample)
{
    Bench bench;
    bench.serve("1");

    const auto lines = firstLines(bench, "dx4 watch --json --sample 300 --timeout 30 D 4 2:FU", 2);

    EXPECT_EQ(lines.at(1),
              "{\"event\":\"sample\",\"time\":0.6,\"values\":{\"1:D 4\":566,\"2:FU 0\":null}}");
}

TEST(WatchNames, WithControlCharactersAreValidJsonAndOneCellOfCsv)
{
    Bench bench;
    bench.serve("1");
    bench.run("cat >plant.toml <<'END'\n[[station]]\naddress = 1\n[[station.register]]\n"
              "at = \"D 4\"\nname = \"a\\u0007\\u001b\\t\\n\\\"\\u0080\"\nunit = \"\\r\"\nEND");

    const std::string json = bench.run("dx4 watch --config plant.toml --json --rounds 1").out;
    const std::string csv = bench.run("dx4 watch --config plant.toml --csv --rounds 1").out;

    EXPECT_NE(json.find("\"name\":\"a\\u0007\\u001b\\t\\n\\\"\xc2\x80\""), std::string::npos)
        << json;
    EXPECT_NE(json.find("\"unit\":\"\\r\""), std::string::npos) << json;
    EXPECT_NE(csv.find(",\"a\x07\x1b\t\n\"\"\xc2\x80\",566,\"\r\","), std::string::npos) << csv;
}
