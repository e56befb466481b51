// SPDX-License-Identifier: MIT
// Verdicts on replies in words.
#pragma once

#include "host/frames/reply_check.h"

#include <QString>

namespace dx4::host {

/// "register not there" for 2; what Modbus means by the code.
QString exceptionName(int code);

/// "no reply", "the reply has a wrong CRC", "refused with exception 2, register not there"; the
/// same words wherever a user meets the event.
QString verdictText(const ReplyVerdict &verdict);

/// Of a request to a station that is left alone.
QString notAskedText();

} // namespace dx4::host
