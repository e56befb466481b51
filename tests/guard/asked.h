// SPDX-License-Identifier: MIT
// A request from its bytes as text.
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
