// SPDX-License-Identifier: MIT
// What the tool prints, command by command, against transcripts that are kept.
//
// A transcript is a text file. "$ command" runs in a shell; below stand its standard output, its
// standard error with "! " in front, and "? code". "> command" goes to the simulator, which
// "@ stations" starts. "= bytes" is an answer of a station without a simulator, "~ count" puts it
// on the line and breaks that after so many answers, -1 for never. What differs from run to run is
// masked. With DX4_WRITE_GOLDEN set the files are written instead.
#include "bench.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <utility>

namespace {

std::string replaced(std::string text, const std::string &what, const std::string &with)
{
    for (std::size_t at = 0; !what.empty() && (at = text.find(what, at)) != std::string::npos;
         at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

/// Takes out what no two runs have in common: paths and times.
std::string masked(const std::string &text, const Bench &bench)
{
    std::string result = replaced(text, bench.device(), "DEVICE");
    result = replaced(result, bench.folder(), "FOLDER");
    const auto mask = [&result](const char *pattern, const char *with) {
        result = std::regex_replace(result, std::regex(pattern), with);
    };
    mask("\"time\":[0-9.e-]+", "\"time\":TIME");
    mask("answers   [0-9].*", "answers   TIMES");
    mask("held [0-9]+ %", "held SHARE %");
    mask("(^|\n) +[0-9]+\\.[0-9] s  ", "$1TIME s  ");
    mask("\"process\":[0-9]+", "\"process\":PROCESS");
    mask("(^|\n)[0-9]+\\.[0-9]{3},", "$1TIME,");
    mask("(^|\n)[0-9]+\\.[0-9]{3} s ", "$1TIME s ");
    return result;
}

std::string prefixed(const std::string &text, const std::string &prefix)
{
    std::istringstream lines(text);
    std::string line;
    std::string result;
    while (std::getline(lines, line))
        result += prefix + line + "\n";
    return result;
}

/// Plays the commands of a transcript and writes down what happens.
std::string played(const std::string &transcript)
{
    Bench bench;
    std::vector<std::string> answers;
    std::istringstream lines(transcript);
    std::string line;
    std::string result;
    while (std::getline(lines, line)) {
        const std::string rest = line.size() > 2 ? line.substr(2) : "";
        if (line.rfind("# ", 0) == 0) {
            result += line + "\n";
        } else if (line.rfind("@ ", 0) == 0) {
            result += line + "\n";
            bench.serve(rest);
        } else if (line.rfind("= ", 0) == 0) {
            result += line + "\n";
            answers.push_back(rest);
        } else if (line.rfind("~ ", 0) == 0) {
            result += line + "\n";
            bench.fake(std::exchange(answers, {}), std::stoi(rest));
        } else if (line.rfind("> ", 0) == 0) {
            const std::string answer = bench.tell(rest);
            result += line + "\n" + (answer == "ok" ? "" : "  " + answer + "\n");
        } else if (line.rfind("$ ", 0) == 0) {
            const Printed printed = bench.run(rest);
            result += line + "\n" + masked(printed.out, bench)
                + prefixed(masked(printed.err, bench), "! ") + "? " + std::to_string(printed.code)
                + "\n";
        }
    }
    return result;
}

std::vector<std::string> transcripts()
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(GOLDEN_FOLDER))
        names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

class Golden : public testing::TestWithParam<std::string> { };

} // namespace

TEST_P(Golden, TranscriptIsAsItWas)
{
    const std::string file = std::string(GOLDEN_FOLDER "/") + GetParam() + ".txt";
    const std::string expected = contentOf(file);
    ASSERT_NE(expected, "");

    const std::string actual = played(expected);

    if (std::getenv("DX4_WRITE_GOLDEN"))
        std::ofstream(file) << actual;
    else
        EXPECT_EQ(actual, expected);
}

INSTANTIATE_TEST_SUITE_P(Tool, Golden, testing::ValuesIn(transcripts()),
                         [](const auto &row) { return row.param; });
