// SPDX-License-Identifier: MIT
// dx4-panel as a program: its arguments, its manual, and how it ends when somebody ends it.
#include "bench.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

namespace {

const char *const running = "01 03 02 00 03 CRC"; // reply of SW
const char *const stopEcho = "01 06 10 01 00 00 CRC";

void writePlant(const Bench &bench, const std::string &stop)
{
    std::ofstream(bench.folder() + "/plant.toml")
        << "[line]\nport = \"" << bench.device() << "\"\n[stop]\n"
        << stop << "[[station]]\naddress = 1\nname = \"Pump\"\n[[station.register]]\nat = \"SW\"\n";
}

std::vector<std::string> panel(const Bench &bench, const std::string &arguments)
{
    return bench.shell("exec '" PANEL_FILE "' " + arguments + " 2>talk.txt",
                       "QT_QPA_PLATFORM=offscreen LC_ALL=C XDG_RUNTIME_DIR=\"$PWD\"");
}

std::string talk(const Bench &bench)
{
    return contentOf(bench.folder() + "/talk.txt");
}

/// Runs the panel to its end.
int codeOf(const Bench &bench, const std::string &arguments)
{
    ChildProcess child(panel(bench, arguments));
    child.readAll();
    return child.wait();
}

/// Signals the panel once it polls.
int codeAfter(const Bench &bench, int number)
{
    ChildProcess child(panel(bench, "--config plant.toml"));
    EXPECT_TRUE(bench.awaitRequests(3, 2));
    child.signal(number);
    child.readAll();
    return child.wait();
}

class EndingSignal : public ::testing::TestWithParam<int> { };

} // namespace

TEST_P(EndingSignal, StopsTheDrivesAndEndsThePanel)
{
    Bench bench;
    bench.fake({ running, stopEcho });
    writePlant(bench, "control_word = 0\n");

    EXPECT_EQ(codeAfter(bench, GetParam()), 0);

    EXPECT_TRUE(bench.awaitRequests(6, 1));
    EXPECT_EQ(talk(bench), "");
}

INSTANTIATE_TEST_SUITE_P(PanelProgram, EndingSignal, ::testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto &row) {
                             return row.param == SIGINT ? "Interrupt"
                                 : row.param == SIGTERM ? "Terminate"
                                                        : "HangUp";
                         });

TEST(PanelProgram, NamesTheDriveThatDidNotConfirmTheStopOfASignal)
{
    Bench bench;
    bench.fake({ running });
    writePlant(bench, "control_word = 0\nconfirm_ms = 200\n");

    EXPECT_EQ(codeAfter(bench, SIGTERM), 1);

    EXPECT_EQ(talk(bench), "dx4-panel: Stop not confirmed: Pump. May still run!\n");
}

TEST(PanelProgram, RefusesAPlantWithoutAStop)
{
    Bench bench;
    bench.fake({});
    writePlant(bench, "");

    EXPECT_EQ(codeOf(bench, "--config plant.toml"), 2);

    EXPECT_EQ(talk(bench),
              "dx4-panel: plant.toml: [stop] has no control_word; the stop button needs the value "
              "of CW that stops a drive\n");
}

TEST(PanelProgram, RefusesAStopThatIsItsStart)
{
    Bench bench;
    bench.fake({});
    writePlant(bench, "control_word = 1\n");

    EXPECT_EQ(codeOf(bench, "--config plant.toml"), 2);

    EXPECT_EQ(talk(bench),
              "dx4-panel: plant.toml: the control_word of [stop] starts drives; write under "
              "[control] the run that does\n");
}

TEST(PanelProgram, NamesEveryErrorOfItsConfiguration)
{
    Bench bench;
    std::ofstream(bench.folder() + "/plant.toml")
        << "[control]\nstart = 1\n[[station]]\naddress = 0\n";

    EXPECT_EQ(codeOf(bench, "--config plant.toml"), 2);

    EXPECT_EQ(talk(bench),
              "dx4-panel: plant.toml:2: start: no such key; expected one of run, reverse\n"
              "plant.toml:4: address: expected a whole number from 1 to 247\n");
}

TEST(PanelProgram, WantsDrivesTheDemonstrationOrASnapshot)
{
    const Bench bench;

    EXPECT_EQ(codeOf(bench, ""), 2);
    EXPECT_EQ(talk(bench),
              "--config FILE, --demo or --open FILE is required\n"
              "Run with --help for more information.\n");

    EXPECT_EQ(codeOf(bench, "--demo --config plant.toml"), 2);
}

TEST(PanelProgram, ItsHelpNeedsNoScreenAndItsManualHasEveryOption)
{
    Bench bench;
    const std::string help = bench.run("QT_QPA_PLATFORM=none '" PANEL_FILE "' --help").out;
    const std::string manual = contentOf(PANEL_MANUAL);

    for (const char *option :
         { "config", "demo", "driver", "fullscreen", "help", "sim", "version" }) {
        EXPECT_NE(help.find(std::string("--") + option), std::string::npos) << option;
        EXPECT_NE(manual.find(std::string("Fl Fl ") + option), std::string::npos) << option;
    }
}

TEST(PanelProgram, TheShellsKnowItsOptions)
{
    for (const char *file : { "/dx4-panel.bash", "/dx4-panel.fish", "/_dx4-panel" }) {
        const std::string completion = contentOf(std::string(COMPLETION_FOLDER) + file);
        for (const char *option :
             { "config", "demo", "driver", "fullscreen", "help", "sim", "version" })
            EXPECT_NE(completion.find(option), std::string::npos) << file << option;
    }
}
