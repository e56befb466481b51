// SPDX-License-Identifier: MIT
// dx4-sim at a terminal: job control, and what the shells make of a line that is not finished.
#include "child_process.h"
#include "master.h"
#include "terminal_process.h"
#include "test_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>

namespace {

/// A line with the words before the cursor, and what the last of them becomes.
struct Case {
    const char *typed;
    const char *completed;
};

const Case cases[] = {
    { "dx4-sim --sta", "dx4-sim --stations" },
    { "dx4-sim --pty --see", "dx4-sim --pty --seed" },
    { "dx4-sim --speed 38", "dx4-sim --speed 38400" },
    { "dx4-sim --pty --format 8O2", "dx4-sim --pty --format 8O2" },
};

std::string bashCompletion(const std::string &typed)
{
    return outputOf({ "/bin/bash", "-c",
                      ". " COMPLETION_FOLDER "/dx4-sim.bash; COMP_WORDS=(" + typed
                          + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _dx4_sim; "
                            "printf '%s\\n' \"${COMPREPLY[@]}\"" });
}

/// The device that stands on the screen.
std::string deviceOn(const Screen &screen)
{
    std::smatch match;
    const std::string text = screen.text();
    return std::regex_search(text, match, std::regex("pty (/dev/pts/[0-9]+)")) ? match[1].str()
                                                                               : std::string();
}

} // namespace

TEST(SimulatorAtATerminal, SaysThatItIsStoppedAndGoesOn)
{
    TerminalProcess shell({ "/bin/bash", "--norc", "--noprofile", "-i" });
    shell.type("bind 'set enable-bracketed-paste off'; PS1='> '\n");
    shell.type(SIMULATOR_FILE " --pty --speed 0\n");
    ASSERT_TRUE(shell.waitForText("pty /dev/pts"));
    const std::string device = deviceOn(shell.screen());

    shell.type("\x1a");
    ASSERT_TRUE(shell.waitForText("dx4-sim: stopped; no station answers until it goes on"));
    ASSERT_TRUE(shell.waitForText("[1]+"));
    {
        Master impatient(device);
        impatient.setTimeoutMs(50);
        EXPECT_EQ(impatient.read(0x2000), -1);
    }
    shell.type("bg\n");
    ASSERT_TRUE(shell.waitForText("dx4-sim: goes on"));
    shell.type("echo the shell is th''ere\n"); // it reads the terminal, the simulator does not
    ASSERT_TRUE(shell.waitForText("the shell is there"));
    EXPECT_EQ(Master(device).read(0x2000), 1);
    shell.type("fg\n");
    shell.type("get F8.0\n");
    ASSERT_TRUE(shell.waitForText("F8.0 5000"));
    shell.type("quit\n");
    shell.type("exit\n");

    EXPECT_EQ(shell.wait(), 0);
}

TEST(SimulatorCompletion, BashFinishesWords)
{
    for (const auto &[typed, completed] : cases) {
        const std::string line = completed;
        EXPECT_EQ(bashCompletion(typed), line.substr(line.rfind(' ') + 1) + "\n") << typed;
    }
}

TEST(SimulatorCompletion, KnowsEveryOption)
{
    const std::string help = outputOf({ SIMULATOR_FILE, "--help" });
    const std::string bash = contentOf(COMPLETION_FOLDER "/dx4-sim.bash");
    const std::string zsh = contentOf(COMPLETION_FOLDER "/_dx4-sim");
    const std::regex option("\n  (?:-h,)?(--[a-z]+)");
    int options = 0;

    for (std::sregex_iterator match(help.begin(), help.end(), option), end; match != end;
         ++match, ++options) {
        EXPECT_NE(bash.find((*match)[1]), std::string::npos) << (*match)[1];
        EXPECT_NE(zsh.find((*match)[1].str() + '['), std::string::npos) << (*match)[1];
    }

    EXPECT_EQ(options, 15);
}

TEST(SimulatorCompletion, ZshFinishesWords)
{
    if (std::system("command -v zsh >/dev/null") != 0)
        GTEST_SKIP() << "zsh is not installed";
    TerminalProcess zsh({ "/usr/bin/env", "TERM=dumb", "zsh", "-f", "-i" });
    zsh.type("PS1='$ '; fpath=(" COMPLETION_FOLDER
             " $fpath); autoload -U compinit; compinit -u -D\n");
    zsh.type("unsetopt beep; print REA''DY\n");
    ASSERT_TRUE(zsh.waitForText("READY"));

    for (const auto &[typed, completed] : cases) {
        zsh.type(std::string(typed) + "\t");
        ASSERT_TRUE(zsh.waitForText(completed)) << typed << "\n" << zsh.screen().text();
        zsh.type("\x15"); // drops the line
    }
}
