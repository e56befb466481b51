// SPDX-License-Identifier: MIT
// The polling that a user's addresses lead to.
#pragma once

#include "cli/session.h"
#include "host/plan.h"

namespace dx4::cli {

/// The words, or the registers of the configuration where there are none.
QStringList wordsOrConfigured(const QStringList &words, const LineOptions &options);

/// Plans the polling on a private copy of the driver.
///
/// @param words  addresses as splitTargets() takes them
/// @return nothing when there are none, or one is wrong
std::optional<host::Plan> makePlan(const QStringList &words, const LineOptions &options,
                                   Failure *failure);

} // namespace dx4::cli
