// SPDX-License-Identifier: MIT
// Requests from their bytes as text.
#pragma once

#include "host_records.h"
#include "scripted_line.h"

#include <algorithm>

/// The request of a hex text without CRC, with the lengths of its reply.
///
/// @param tag  of a write: its tries have the same
inline FRAME_PRO asked(const std::string &hex, int tag = 0)
{
    const QByteArray bytes = framed(hex);
    FRAME_PRO request;
    std::transform(bytes.begin(), bytes.end(), request.frame,
                   [](char byte) { return static_cast<unsigned char>(byte); });
    request.sendLength = static_cast<int>(bytes.size());
    const bool isRead = request.frame[1] == 3;
    request.replyDataLength = isRead ? 2 * request.frame[5] : 0;
    request.replyLength = isRead ? 5 + request.replyDataLength : 8;
    request.var.station = request.frame[0];
    request.var.varKind = tag;
    return request;
}

inline const FRAME_PRO readA = asked("01 03 D0 00 00 02");
inline const FRAME_PRO readB = asked("01 03 D0 08 00 02"); // as long as A
inline const FRAME_PRO readOfThree = asked("01 03 D0 00 00 03");
inline constexpr char runHex[] = "01 06 10 01 00 01";

/// A write of the control word; its tries have the tag in common.
inline FRAME_PRO run(int tag)
{
    return asked(runHex, tag);
}

/// A write of F0.00 and F0.01; its reply does not tell the values.
inline FRAME_PRO writeMany(const std::string &values, int tag)
{
    return asked("01 10 F0 00 00 02 04 " + values, tag);
}
