// SPDX-License-Identifier: MIT
// dx4: the driver at the command line.
#include "cli/commands/demo.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>

#include <memory>
#include <string>

namespace {

constexpr int exitUsage = 2;

void addDemo(CLI::App &app, int &exitCode)
{
    struct Texts {
        int seconds = dx4::cli::DemoOptions().seconds;
        std::string simulator;
        std::string driver;
        bool json = false;
    };
    const auto texts = std::make_shared<Texts>();
    CLI::App *demo = app.add_subcommand("demo", "poll and write a simulated inverter");
    demo->add_option("--seconds", texts->seconds, "length of the show")
        ->check(CLI::Range(1, 3600))
        ->capture_default_str();
    demo->add_option("--sim", texts->simulator, "program of the simulator, dx4-sim");
    demo->add_option("--driver", texts->driver, "file of the driver, libkorvane_dx4.so");
    demo->add_flag("--json", texts->json, "print one JSON object per line");
    demo->callback([texts, &exitCode] {
        dx4::cli::DemoOptions options;
        options.seconds = texts->seconds;
        options.simulator = QString::fromStdString(texts->simulator);
        options.driver = QString::fromStdString(texts->driver);
        options.json = texts->json;
        exitCode = dx4::cli::runDemo(options);
    });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    int exitCode = 0;
    CLI::App app { "Talks to a frequency inverter through its driver." };
    app.set_version_flag("--version", KORVANE_VERSION);
    app.require_subcommand(1);
    app.footer("Exit codes: 0 done, 1 device or line, 2 usage.");
    addDemo(app, exitCode);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : exitUsage;
    }
    return exitCode;
}
