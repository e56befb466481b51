// SPDX-License-Identifier: MIT
// What the commands have in common that write.
#pragma once

#include "cli/line/session.h"
#include "cli/registers/register_names.h"
#include "cli/registers/values.h"

namespace dx4::cli {

/// Adds the stop of the configuration for every station that is written to, so that a command that
/// fails can be followed by it.
void addStops(const QVector<Setting> &settings, const host::StopPolicy &stop,
              SessionWishes *wishes);

/// Whether every station that is written to is one of the configuration, as mayDrive() has it.
bool mayDriveAll(const LineOptions &options, const QVector<Setting> &settings, Failure *failure);

/// Prints each register of the requests that were confirmed, with what became of it: "confirmed",
/// or "held already". JSON has the write's id too.
///
/// @param target, values  the whole write
void printResults(const QVector<WriteResult> &results, const Target &target,
                  const QVector<quint16> &values, bool json, const RegisterNames &names);

/// Writes a run and prints it so. @return ExitDone, or what went wrong
Failure writeAndPrint(Session &session, const Target &target, const QVector<quint16> &values,
                      const WriteManner &manner, const RegisterNames &names);

/// The same for a setting. A command that is no stop goes only to a station that
/// answers.
///
/// @param commanded  out: set where it is a command and was written, heard or not
/// @return ExitDone, or what went wrong
Failure writeSetting(Session &session, const Setting &setting, const WriteManner &manner,
                     const RegisterNames &names, bool *commanded);

} // namespace dx4::cli
