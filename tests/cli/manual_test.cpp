// SPDX-License-Identifier: MIT
// What the manual and the help show is what works.
#include "bench.h"

#include <gtest/gtest.h>

#include <csignal>
#include <regex>
#include <set>

namespace {

std::string unescaped(std::string line)
{
    line = std::regex_replace(line, std::regex("\\\\\\(dq"), "\"");
    return std::regex_replace(line, std::regex("\\\\-"), "-");
}

/// The command lines of the manual, in order.
std::vector<std::string> manualExamples()
{
    const std::string manual = contentOf(TOOL_MANUAL);
    const std::regex example("\\.Dl \\$ (dx4 [^\n]+)");
    std::vector<std::string> found;
    for (std::sregex_iterator match(manual.begin(), manual.end(), example), end; match != end;
         ++match)
        found.push_back(unescaped((*match)[1]));
    return found;
}

/// Names below a "Subcommands:" of a help.
std::vector<std::string> commandsIn(const std::string &help)
{
    std::vector<std::string> names;
    const std::size_t at = help.find("Subcommands:");
    if (at == std::string::npos)
        return names;
    const std::string part = help.substr(at, help.find("\n\n", at) - at);
    const std::regex name("\n  ([a-z]+) ");
    for (std::sregex_iterator match(part.begin(), part.end(), name), end; match != end; ++match)
        names.push_back((*match)[1]);
    return names;
}

/// Every command with its help, "frames read" and the like among them.
std::vector<std::pair<std::string, std::string>> helps(Bench &bench,
                                                       const std::string &command = "")
{
    std::vector<std::pair<std::string, std::string>> found;
    const std::string help = bench.run("dx4 " + command + " --help").out;
    for (const std::string &name : commandsIn(help)) {
        const auto below = helps(bench, command + name + " ");
        found.insert(found.end(), below.begin(), below.end());
    }
    if (!command.empty())
        found.emplace_back(command, help);
    return found;
}

/// What the pattern's group matches in a text.
std::set<std::string> found(const std::string &pattern, const std::string &text)
{
    std::set<std::string> words;
    const std::regex word(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), word), end; match != end; ++match)
        words.insert((*match)[1]);
    return words;
}

/// The lines of the manual that begin what it says of a command.
std::string headsOf(const std::string &command, const std::string &manual)
{
    const std::regex head("\n(\\.It Ic " + command + "[^\n]*|\\.It Ic "
                          + command.substr(0, command.size() - 1) + "(?=\n))");
    std::string heads;
    for (std::sregex_iterator match(manual.begin(), manual.end(), head), end; match != end; ++match)
        heads += (*match)[1].str() + "\n";
    return heads;
}

bool runsUntilInterrupted(const std::string &command)
{
    return command.find("dx4 watch") == 0 && command.find("--rounds") == std::string::npos;
}

} // namespace

TEST(Manual, EveryExampleWorks)
{
    Bench bench;
    bench.serve("1,2");
    bench.run("printf 'set FRE 3000\\nset CW 1\\nwait 500\\nstop\\n' >start.txt");
    const std::vector<std::string> examples = manualExamples();
    ASSERT_GT(examples.size(), 15U);

    for (const std::string &example : examples) {
        const std::string command =
            std::regex_replace(example, std::regex("/dev/ttyUSB0"), bench.device());
        if (runsUntilInterrupted(command)) {
            ChildProcess child(bench.shell("exec " + command));
            EXPECT_NE(child.readLine(), "") << example;
            child.signal(SIGINT);
            child.readAll();
            EXPECT_EQ(child.wait(), 0) << example;
            continue;
        }
        const Printed printed = bench.run(command);
        const bool isRefusal = example.find("--count 2") != std::string::npos;
        EXPECT_EQ(printed.code, isRefusal ? 2 : 0) << example << "\n" << printed.err;
        const bool isComparison = example.find("params diff") != std::string::npos;
        EXPECT_EQ(printed.out.empty(), isComparison) << example;
    }
}

TEST(Manual, HoldsTheExamplesOfEveryHelp)
{
    Bench bench;
    const std::vector<std::string> examples = manualExamples();
    const std::set<std::string> known(examples.begin(), examples.end());
    const std::regex example("\n  \\$ (dx4 [^\n]+)");
    const auto all = helps(bench);

    EXPECT_GT(all.size(), 20U);
    for (const auto &[command, help] : all) {
        std::sregex_iterator match(help.begin(), help.end(), example);
        if (commandsIn(help).empty()) {
            EXPECT_NE(match, std::sregex_iterator()) << command << "shows no example";
        }
        for (; match != std::sregex_iterator(); ++match)
            EXPECT_EQ(known.count((*match)[1]), 1U) << (*match)[1];
    }
}

TEST(Manual, NamesEveryOptionWhereItsCommandStands)
{
    Bench bench;
    const std::string manual = contentOf(TOOL_MANUAL);
    const std::set<std::string> common = found("\n\\.It (?:Fl v , )?Fl Fl ([a-z-]+)",
                                               manual.substr(manual.find("Options of a line")));
    int options = 0;

    for (const auto &[command, help] : helps(bench)) {
        const std::string heads = headsOf(command, manual);
        const std::set<std::string> known = found("\n  (?:-[a-z],)?--([a-z-]+)", help);
        if (!commandsIn(help).empty())
            continue;
        EXPECT_NE(heads, "") << command;
        for (const std::string &option : known) {
            const bool isCommon = common.count(option) == 1;
            EXPECT_TRUE(isCommon || found("Fl Fl ([a-z-]+)", heads).count(option) == 1)
                << command << option;
        }
        for (const std::string &option : found("Fl Fl ([a-z-]+)", heads))
            EXPECT_EQ(known.count(option), 1U) << command << option;
        options += static_cast<int>(known.size());
    }

    EXPECT_GT(options, 99);
}

TEST(Completion, KnowsEveryCommandAndOption)
{
    Bench bench;
    const std::regex option("\n  (?:-[a-z],)?--([a-z-]+)");
    int options = 0;

    for (const auto &[command, help] : helps(bench)) {
        const std::string offered = "\n" + bench.complete("dx4 " + command + "-");
        for (std::sregex_iterator match(help.begin(), help.end(), option), end; match != end;
             ++match, ++options) {
            const std::string name = "--" + (*match)[1].str();
            EXPECT_NE(offered.find("\n" + name + "\n"), std::string::npos) << command << name;
        }
        const std::string path = command.substr(0, command.size() - 1);
        const std::string last = path.substr(path.rfind(' ') + 1);
        EXPECT_EQ(bench.complete("dx4 " + path), last + "\n");
    }

    EXPECT_GT(options, 99);
}
