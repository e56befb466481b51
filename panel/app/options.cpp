// SPDX-License-Identifier: MIT
// The arguments of the panel.
#include "panel/app/options.h"

#include "cli/console/exit_code.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <string>

namespace dx4::panel {
namespace {

struct Texts {
    std::string config;
    std::string open;
    std::string driver;
    std::string journal;
    std::string simulator;
};

void describe(CLI::App &app, Options &options, Texts &texts)
{
    auto *demo = app.add_flag("--demo", options.demo, "show three simulated drives");
    auto *config = app.add_option("--config", texts.config, "drives and line, a TOML file");
    config->type_name("FILE")->excludes(demo);
    app.add_option("--open", texts.open, "look at the snapshot of a fault, without a line")
        ->type_name("FILE")
        ->excludes(demo)
        ->excludes(config);
    app.add_flag("--fullscreen", options.fullscreen, "cover the whole screen");
    auto *noJournal =
        app.add_flag("--no-journal", options.noJournal, "keep no journal of what happens");
    app.add_option("--journal", texts.journal, "the journal's file; else in the user's data")
        ->type_name("FILE")
        ->excludes(noJournal);
    app.add_option("--driver", texts.driver, "the driver's file; else it is looked for")
        ->type_name("FILE");
    app.add_option("--sim", texts.simulator, "program of the simulator, dx4-sim")
        ->type_name("FILE");
}

/// What CLI11 says goes to the stream that it is for.
int tell(const CLI::App &app, const CLI::ParseError &error)
{
    const bool isAsked = app.exit(error, std::cout, std::cerr) == 0;
    return isAsked ? cli::ExitDone : cli::ExitUsage;
}

} // namespace

std::optional<Options> parseOptions(int argc, char **argv, const char *version, int *exitCode)
{
    CLI::App app("A window on the drives of one line.", "dx4-panel");
    app.set_version_flag("--version", std::string("dx4-panel ") + version);
    Options options;
    Texts texts;
    describe(app, options, texts);
    try {
        app.parse(argc, argv);
        if (!options.demo && texts.config.empty() && texts.open.empty())
            throw CLI::RequiredError("--config FILE, --demo or --open FILE");
    } catch (const CLI::ParseError &error) {
        *exitCode = tell(app, error);
        return std::nullopt;
    }
    options.config = QString::fromStdString(texts.config);
    options.open = QString::fromStdString(texts.open);
    options.driver = QString::fromStdString(texts.driver);
    options.journal = QString::fromStdString(texts.journal);
    options.simulator = QString::fromStdString(texts.simulator);
    return options;
}

} // namespace dx4::panel
