// SPDX-License-Identifier: MIT
// The polling that a user's addresses lead to.
#pragma once

#include "cli/session.h"
#include "host/plan.h"

namespace dx4::cli {

/// Plans the polling on a private copy of the driver.
///
/// @param words  addresses as splitTargets() takes them
std::optional<host::Plan> makePlan(const QStringList &words, const LineOptions &options,
                                   Failure *failure);

} // namespace dx4::cli
