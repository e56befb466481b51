// SPDX-License-Identifier: MIT
// The polling that a user's addresses lead to.
#pragma once

#include "cli/console/exit_code.h"
#include "cli/line/line_options.h"
#include "cli/registers/register_names.h"
#include "host/plan/plan.h"

#include <functional>

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

/// Time of one round through a plan, with the silence that the configuration's stations need on top
/// of the line's own.
///
/// @param turnaround  of a station, end of request to start of reply
host::Duration roundTime(const host::Plan &plan, const host::Config &plant,
                         host::Duration turnaround);

/// A table with a line per block: its station, its ends, and numbers. Below each stand the names of
/// its registers, where they have some.
///
/// @param heads  of the numbers
QStringList blockLines(const host::Plan &plan, const QStringList &heads,
                       const std::function<QStringList(const KEY_ADDRESS &)> &numbersOf,
                       const RegisterNames &names);

} // namespace dx4::cli
