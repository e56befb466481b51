// SPDX-License-Identifier: MIT
// The frames of a line as text, without times: two runs of the same scenario compare equal.
#include "simulator/byte_log.h"

namespace dx4::sim {

std::string logLine(const LineEvent &event)
{
    std::string number = std::to_string(event.number);
    switch (event.kind) {
    case LineEvent::Kind::Request:
        return number + " > " + toHex(event.bytes);
    case LineEvent::Kind::Damaged:
        return number + " ~ " + toHex(event.bytes);
    case LineEvent::Kind::Fault:
        return number + " ! " + event.text;
    case LineEvent::Kind::Reply:
        return number + " < " + toHex(event.bytes);
    case LineEvent::Kind::NoReply:
        return number + " -";
    case LineEvent::Kind::Plug:
        return number + " = " + event.text;
    }
    return number;
}

} // namespace dx4::sim
