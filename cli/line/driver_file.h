// SPDX-License-Identifier: MIT
// The driver, found and loaded for a command.
#pragma once

#include "cli/console/command_line.h"
#include "cli/console/exit_code.h"
#include "host/link/plugin.h"

#include <memory>
#include <utility>

namespace dx4::cli {

/// The option --driver.
void addDriverOption(Command &command, QString &path);

/// Finds and loads the driver.
///
/// @param path  what the user asked for; empty when nothing
/// @return null with the failure told
std::unique_ptr<host::Plugin> loadDriver(const QString &path, Failure *failure);

/// What a command does with the driver alone, which is loaded first.
///
/// @return its options, which have the driver's path as `driver`
template <typename Options>
Options &driverAction(Command &command, int (*run)(const Options &, std::unique_ptr<host::Plugin>))
{
    const auto options = std::make_shared<Options>();
    command.action([options, run] {
        Failure failure;
        auto plugin = loadDriver(options->driver, &failure);
        return plugin ? run(*options, std::move(plugin)) : complain(failure);
    });
    return *options;
}

} // namespace dx4::cli
