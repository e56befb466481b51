// SPDX-License-Identifier: MIT
// Confirmed writes, as text and as JSON.
#pragma once

#include "cli/line/session.h"
#include "cli/registers/register_names.h"

namespace dx4::cli {

/// Prints each register of the requests that were confirmed, with what became of it: "confirmed",
/// or "held already". JSON has the write's id too.
///
/// @param target, values  the whole write
void printResults(const QVector<WriteResult> &results, const Target &target,
                  const QVector<quint16> &values, bool json, const RegisterNames &names);

} // namespace dx4::cli
