// SPDX-License-Identifier: MIT
// The polling that a user's addresses lead to.
#pragma once

#include "cli/console/exit_code.h"
#include "cli/line/line_options.h"
#include "cli/registers/register_names.h"
#include "host/plan/plan.h"

namespace dx4::cli {

/// The words, or the registers of the configuration where there are none.
QStringList wordsOrConfigured(const QStringList &words, const LineOptions &options);

/// What is wrong where neither has any.
Failure noRegisters();

/// Checks registers that were taken from the configuration, and tells file and line of the first
/// one that the driver refuses. Words of a user pass: parseTargets() checks them.
bool checkConfigured(const QStringList &words, const LineOptions &options,
                     const host::DriverApi &api, Failure *failure);

/// Plans the polling on a private copy of the driver.
///
/// @param words  addresses as splitTargets() takes them
/// @return nothing when there are none, or one is wrong
std::optional<host::Plan> makePlan(const QStringList &words, const LineOptions &options,
                                   Failure *failure);

/// Lines with the names of a block's registers, to stand below it; none where none has a name.
QStringList blockNames(const KEY_ADDRESS &block, const RegisterNames &names);

} // namespace dx4::cli
