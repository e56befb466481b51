// SPDX-License-Identifier: MIT
// Settings written in a row, as the commands do that write.
#pragma once

#include "cli/line/session.h"
#include "cli/line/write_output.h"
#include "cli/registers/values.h"

namespace dx4::cli {

/// Adds the stop of the configuration for every station that is written to, so that a command that
/// fails can be followed by it.
void addStops(const QVector<Setting> &settings, const host::StopPolicy &stop,
              SessionWishes *wishes);

/// Whether every station that is written to is one of the configuration, as mayDrive() has it.
bool mayDriveAll(const LineOptions &options, const QVector<Setting> &settings, Failure *failure);

/// Writes one and prints what became of it. A command that is no stop goes only to a station that
/// answers.
///
/// @param commanded  out: set where it is a command and was written, heard or not
/// @return ExitDone, or what went wrong
Failure writeSetting(Session &session, const Setting &setting, const WriteManner &manner,
                     const RegisterNames &names, bool *commanded);

} // namespace dx4::cli
