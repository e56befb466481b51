// SPDX-License-Identifier: MIT
// The kinds of faults, and which keys a rule of each has.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace dx4::sim {

/// What a rule does to an exchange.
enum class FaultKind {
    DropRequest, ///< the stations hear nothing
    DropReply, ///< the stations obey, the master hears nothing
    Delay, ///< the reply comes later by `duration`
    FlipBits, ///< `count` bits of the frame are inverted, the CRC stays as it was
    BreakCrc, ///< the CRC bytes are inverted
    Truncate, ///< only the first `count` bytes arrive
    Junk, ///< `count` foreign bytes before, inside or after the frame
    WrongStation, ///< the frame carries station `value`, with a good CRC
    WrongFunction, ///< the frame carries function `value`, with a good CRC
    Exception, ///< exception `value` comes instead of the reply; the station obeys nothing
    Echo, ///< the master hears its own request, whatever becomes of it, then the reply
    Silence, ///< for `duration` the stations obey, but no reply reaches the master
    Unplug, ///< for `duration` nothing passes in either direction
    PowerCycle, ///< the drive is without power for `duration` and starts anew
};

/// What a rule may say beyond its kind and its conditions.
enum FaultKey : unsigned {
    SideKey = 1, ///< the frame that it damages: only kinds that change bytes have it
    PlaceKey = 2,
    CountKey = 4,
    ValueKey = 8,
    DurationKey = 16,
};

/// Whether rules of this kind have a key.
bool hasKey(FaultKind kind, FaultKey key);

/// Whether rules of this kind change the bytes of a frame, on the side they name.
inline bool damagesFrame(FaultKind kind)
{
    return hasKey(kind, SideKey);
}

/// "drop-request", "drop-reply", "delay", "flip-bits", "break-crc", "truncate", "junk",
/// "wrong-station", "wrong-function", "exception", "echo", "silence", "unplug", "power-cycle".
const char *faultKindName(FaultKind kind);

/// The kind of such a name; none for another text.
std::optional<FaultKind> faultKindByName(const std::string &name);

/// Every kind, in the order of the enumeration.
const std::vector<FaultKind> &allFaultKinds();

} // namespace dx4::sim
