// SPDX-License-Identifier: MIT
// What became of a reply, for scripts and as an exit code.
#pragma once

#include "cli/console/exit_code.h"
#include "host/frames/reply_check.h"

namespace dx4::cli {

/// Short name for scripts: "silence", "crc", "exception", ...
QString causeName(host::ReplyCause cause);

ExitCode causeCode(const host::ReplyVerdict &verdict);

} // namespace dx4::cli
