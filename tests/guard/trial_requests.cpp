// SPDX-License-Identifier: MIT
// Requests as the driver makes them, without the driver.
#include "trial_requests.h"

namespace {

constexpr int requestBytes = 8;

} // namespace

void closeFrame(FRAME_PRO &frame, int payload)
{
    unsigned crc = 0xFFFF;
    for (int i = 0; i < payload; ++i) {
        crc ^= frame.frame[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    frame.frame[payload] = static_cast<unsigned char>(crc & 0xFFU);
    frame.frame[payload + 1] = static_cast<unsigned char>(crc >> 8);
    frame.sendLength = payload + 2;
}

FRAME_PRO requestOf(int station, int function, int address, int value)
{
    FRAME_PRO frame;
    const int words[] = { station * 256 + function, address, value };
    for (int i = 0; i < 3; ++i) {
        frame.frame[2 * i] = static_cast<unsigned char>(words[i] / 256);
        frame.frame[2 * i + 1] = static_cast<unsigned char>(words[i] % 256);
    }
    frame.replyLength = requestBytes;
    frame.var.station = station;
    closeFrame(frame, requestBytes - 2);
    return frame;
}

FRAME_PRO readOf(int station, int address, int count)
{
    FRAME_PRO frame = requestOf(station, 3, address, count);
    frame.replyDataLength = 2 * count;
    frame.replyLength = 5 + 2 * count;
    return frame;
}

QByteArray sentBy(const FRAME_PRO &request)
{
    return QByteArray(reinterpret_cast<const char *>(request.frame), request.sendLength);
}
