// SPDX-License-Identifier: MIT
// What Modbus means by the codes of exception replies.
#pragma once

namespace dx4 {

/// "register not there" for 2; of codes that Modbus does not define, that they are the device's
/// own.
const char *exceptionName(int code);

} // namespace dx4
