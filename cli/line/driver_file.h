// SPDX-License-Identifier: MIT
// The driver, found and loaded for a command.
#pragma once

#include "cli/console/command_line.h"
#include "cli/console/exit_code.h"
#include "host/link/plugin.h"

namespace dx4::cli {

/// The option --driver.
void addDriverOption(Command &command, QString &path);

/// Finds and loads the driver.
///
/// @param path  what the user asked for; empty when nothing
/// @return null with the failure told
std::unique_ptr<host::Plugin> loadDriver(const QString &path, host::Plugin::Instance instance,
                                         Failure *failure);

} // namespace dx4::cli
