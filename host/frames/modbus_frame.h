// SPDX-License-Identifier: MIT
// Places and figures of a Modbus RTU frame.
#pragma once

#include "host/base/length.h"
#include "host_records.h"
#include "wire/function_code.h"

#include <QByteArray>

namespace dx4::host {

inline constexpr int stationByte = 0;
inline constexpr int functionByte = 1;
inline constexpr int byteCountByte = 2; ///< of a read reply
inline constexpr int exceptionCodeByte = 2;

/// Station, function, address, value or count: what the reply of a write repeats.
inline constexpr int echoedBytes = 6;

/// The shortest reply: station, function, code, CRC.
inline constexpr int exceptionLength = 5;

/// A byte as a number from 0 to 255.
inline int byteAt(const QByteArray &bytes, int position)
{
    return static_cast<unsigned char>(bytes.at(position));
}

/// The request's bytes as they go on the wire.
inline QByteArray bytesOf(const FRAME_PRO &request)
{
    return QByteArray(reinterpret_cast<const char *>(request.frame), request.sendLength);
}

/// Whether the reply equals the request, as an adapter's echo does.
inline bool repliesLikeEcho(const FRAME_PRO &request)
{
    return request.frame[functionByte] == WriteSingleRegister;
}

} // namespace dx4::host
