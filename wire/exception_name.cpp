// SPDX-License-Identifier: MIT
// What Modbus means by the codes of exception replies.
#include "wire/exception_name.h"

namespace dx4 {

const char *exceptionName(int code)
{
    switch (code) {
    case 1:
        return "function not known";
    case 2:
        return "register not there";
    case 3:
        return "value not allowed";
    case 4:
        return "device failed";
    case 5:
        return "accepted, takes a while";
    case 6:
        return "device busy";
    default:
        return "a code of the device's own";
    }
}

} // namespace dx4
