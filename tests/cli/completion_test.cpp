// SPDX-License-Identifier: MIT
// What the shells make of a command line that is not finished.
#include "bench.h"
#include "missing_tool.h"
#include "terminal_process.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

/// A line with the words before the cursor, and what the last of them becomes.
struct Case {
    const char *typed;
    const char *completed;
};

const Case cases[] = {
    { "dx4 sca", "dx4 scan" },
    { "dx4 frames re", "dx4 frames read" },
    { "dx4 params res", "dx4 params restore" },
    { "dx4 watch --rec", "dx4 watch --reconnect" },
    { "dx4 watch --csv --roun", "dx4 watch --csv --rounds" },
    { "dx4 frames decode --req", "dx4 frames decode --request" },
    { "dx4 frames decode 01 03 --req", "dx4 frames decode 01 03 --request" },
    { "dx4 stop --a", "dx4 stop --all" },
    { "dx4 set C", "dx4 set CW" },
    { "dx4 get --speed 38", "dx4 get --speed 38400" },
};

} // namespace

TEST(Completion, BashFinishesWords)
{
    Bench bench;
    for (const auto &[typed, completed] : cases) {
        const std::string line = completed;
        EXPECT_EQ(bench.complete(typed), line.substr(line.rfind(' ') + 1) + "\n") << typed;
    }
}

TEST(Completion, BashFinishesFileNamesWithBlanksAndFolders)
{
    Bench bench;
    bench.run("mkdir 'all plants'; touch 'two drives.toml' two.txt");

    EXPECT_EQ(bench.complete("dx4 get --config two"), "two drives.toml\n");
    EXPECT_EQ(bench.complete("dx4 get --config all"), "all plants\n");
    EXPECT_EQ(bench.complete("dx4 get --config = two"), "two drives.toml\n");
    EXPECT_EQ(bench.complete("dx4 params dump 'two\\ dr'"), "two drives.toml\n");
    EXPECT_EQ(bench.complete("dx4 replay two.t"), "two.txt\n");
}

TEST(Completion, BashOffersTheStationsOfTheConfiguration)
{
    Bench bench;
    bench.run("printf '[[station]]\\naddress = 12\\n[[station]]\\n address=7 # pump\\n' "
              ">'two drives.toml'");

    EXPECT_EQ(bench.complete("dx4 run --config 'two\\ drives.toml' --station ''"), "12\n7\n");
    EXPECT_EQ(bench.complete("dx4 run --config = 'two\\ drives.toml' --station 1"), "12\n");
    EXPECT_EQ(bench.complete("dx4 run --station ''"), "\n");
}

TEST(Completion, BashOffersAllOptionsOfACommand)
{
    Bench bench;
    EXPECT_EQ(bench.complete("dx4 check --"),
              "--count\n--read\n--write\n--json\n--driver\n--help\n");
}

TEST(Completion, BashOffersAValueOfEachKind)
{
    Bench bench;
    EXPECT_EQ(bench.complete("dx4 get --as ''"), "u32\ni32\nf32\n");
    EXPECT_EQ(bench.complete("dx4 get --speed = 3"), "38400\n");
    EXPECT_EQ(bench.complete("dx4 set ''"), "F\nCW\nFRE\n");
    EXPECT_EQ(bench.complete("dx4 get ''"), "F\nD\nSW\nFU\n");
    EXPECT_EQ(bench.complete("dx4 help frames ''"), "read\nwrite\ndecode\n");
    EXPECT_EQ(bench.complete("dx4 get --port /dev/nul"), "/dev/null\n");
    EXPECT_EQ(bench.complete("dx4 frames decode ''"), "\n");
}

TEST(Completion, LeavesOutOptionsThatAreGiven)
{
    Bench bench;
    EXPECT_EQ(bench.complete("dx4 check --read --write --"), "--count\n--json\n--driver\n--help\n");
}

TEST(Completion, OffersNoOptionWhereAllAreGiven)
{
    Bench bench;
    EXPECT_EQ(bench.complete("dx4 --help --version --"), "\n");
}

TEST(Completion, FishFinishesWordsAndTellsTheirMeaning)
{
    if (std::system("command -v fish >/dev/null") != 0)
        END_WITHOUT("fish");
    Bench bench;
    bench.run("mkdir plants; touch plant.toml");
    const auto offered = [&bench](const std::string &typed) {
        return bench
            .run("fish --no-config -c 'source " COMPLETION_FOLDER "/dx4.fish; complete -C \""
                 + typed + "\"'")
            .out;
    };

    for (const auto &[typed, completed] : cases) {
        const std::string line = completed;
        const std::string found = offered(typed);
        EXPECT_EQ(found.substr(0, found.find_first_of("\t\n")), line.substr(line.rfind(' ') + 1))
            << typed;
    }
    EXPECT_EQ(offered("dx4 sca"), "scan\tfind the stations on a line\n");
    EXPECT_EQ(offered("dx4 params dump pla"), "plant.toml\nplants/\n");
    EXPECT_EQ(offered("dx4 run "), "");
}

TEST(Completion, ZshFinishesWords)
{
    if (std::system("command -v zsh >/dev/null") != 0)
        END_WITHOUT("zsh");
    Bench bench;
    bench.run("touch plant.toml plant.txt");
    TerminalProcess zsh(bench.shell("exec zsh -f -i", "TERM=dumb"));
    zsh.type("PS1='$ '; fpath=(" COMPLETION_FOLDER
             " $fpath); autoload -U compinit; compinit -u -D\n");
    zsh.type("unsetopt beep; print REA''DY\n");
    ASSERT_TRUE(zsh.waitForText("READY"));

    for (const auto &[typed, completed] : cases) {
        zsh.type(std::string(typed) + "\t");
        ASSERT_TRUE(zsh.waitForText(completed)) << typed << "\n" << zsh.screen().text();
        zsh.type("\x15"); // drops the line
    }
    zsh.type("dx4 get --config pla\t");
    EXPECT_TRUE(zsh.waitForText("dx4 get --config plant.toml")) << zsh.screen().text();
}
