// SPDX-License-Identifier: MIT
// What became of a reply, in words and as an exit code.
#pragma once

#include "cli/exit_code.h"
#include "host/reply_check.h"

namespace dx4::cli {

/// "no reply", "exception 2, register not there", ...
QString causeText(const host::ReplyVerdict &verdict);

/// Short name for scripts: "silence", "crc", "exception", ...
QString causeName(host::ReplyCause cause);

ExitCode causeCode(const host::ReplyVerdict &verdict);

} // namespace dx4::cli
