// SPDX-License-Identifier: MIT
// How the program ends, for the script that called it.
#pragma once

#include "cli/console/filled.h"

#include <optional>

namespace dx4::cli {

/// One code per kind of failure; the man page lists them.
enum ExitCode {
    ExitDone = 0,
    ExitFailed = 1, ///< the driver, the simulator or a file is missing or broken
    ExitUsage = 2, ///< the arguments or the configuration are wrong
    ExitLine = 3, ///< the port does not open, or the line broke
    ExitNoReply = 4, ///< the station is silent
    ExitDamagedReply = 5, ///< replies arrive cut short or with a wrong CRC
    ExitForeignReply = 6, ///< sound replies that do not belong to the request
    ExitRefused = 7, ///< the station answers with an exception
    ExitDiffers = 8, ///< values differ from those compared with
    ExitInterrupted = 130, ///< ended by Ctrl-C before it was done
    ExitQuit = 131, ///< ended at once by Ctrl-\, without a stop
};

/// Why something did not work.
struct Failure {
    ExitCode code = ExitFailed;
    QString text; ///< what, where, and what would be right
};

/// Tells why something is not to be had, and gives nothing, for the caller to return.
///
/// @param failure  out: why; may be null
std::nullopt_t refuse(Failure *failure, const QString &text, ExitCode code = ExitUsage);

/// The same for a caller who returns whether something may be.
bool fail(Failure *failure, const QString &text, ExitCode code = ExitUsage);

/// From now on messages are those of the command that these words call, without the program's name.
///
/// @param command  empty: of the program itself
void speakFor(const QString &command);

/// Says it on standard error, "dx4 get: ...".
///
/// @return the code, for the caller to end with
int complain(const Failure &failure);

/// A note on standard error that is no failure, "dx4 scan: ...".
void note(const QString &text);

} // namespace dx4::cli
