// SPDX-License-Identifier: MIT
// Whether a reply answers its request, looked at more closely than the driver does.
#pragma once

#include "host_records.h"

#include <QByteArray>

namespace dx4::host {

/// What a reply is, seen from its request.
enum class ReplyCause {
    Good, ///< answers the request in every byte
    Silence, ///< no byte at all
    Truncated, ///< fewer bytes than the request expects
    BadCrc,
    ForeignStation, ///< another station's reply
    WrongFunction,
    WrongByteCount, ///< a read of another length
    WrongEcho, ///< the echo of another write
    Exception, ///< the station refused; see ReplyVerdict::exceptionCode
};

struct ReplyVerdict {
    ReplyCause cause = ReplyCause::Silence;
    int exceptionCode = 0; ///< 1 to 255 with Exception, else 0

    /// Whether sending the request again could bring another answer: not after the exceptions that
    /// blame the function (1), the address (2) or the value (3).
    bool canRetry() const;
};

/// Compares a reply with its request: CRC, station, function, byte count of a read, address and
/// value or count of a write's echo. The driver itself believes length and CRC.
ReplyVerdict checkReply(const FRAME_PRO &request, const QByteArray &reply);

} // namespace dx4::host
