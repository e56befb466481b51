// SPDX-License-Identifier: MIT
// Requests that the guard makes itself, and those that it lets onto no line.
#include "host/exchange/guard_requests.h"

#include "host/frames/frame_finder.h"
#include "host/frames/modbus_frame.h"
#include "register_tables.h"
#include "wire/limits.h"

#include <algorithm>
#include <initializer_list>

namespace dx4::host {
namespace {

constexpr int shortRequest = 8; // bytes
constexpr int valueByte = 4; // value or count of a request
constexpr int headOfWriteMany = 7; // bytes ahead of the values
constexpr int replyAroundData = 5; // station, function, byte count, CRC
constexpr int mostMonitored = 16; // registers of "D" from the first, half of what the type has

FRAME_PRO requestOf(int station, int function, int registerAddress, int value)
{
    QByteArray bytes;
    for (int byte : { station, function, registerAddress / 256, registerAddress % 256, value / 256,
                      value % 256, 0, 0 })
        bytes.append(static_cast<char>(byte));
    const unsigned crc = crcOf(bytes);
    bytes[shortRequest - 2] = static_cast<char>(crc & 0xFFU);
    bytes[shortRequest - 1] = static_cast<char>(crc >> 8);
    FRAME_PRO request;
    std::transform(bytes.cbegin(), bytes.cend(), request.frame,
                   [](char byte) { return static_cast<unsigned char>(byte); });
    request.sendLength = shortRequest;
    request.var.station = station;
    return request;
}

FRAME_PRO readOf(int station, int registerAddress, int count)
{
    FRAME_PRO read = requestOf(station, ReadHoldingRegisters, registerAddress, count);
    read.replyDataLength = 2 * count;
    read.replyLength = replyAroundData + read.replyDataLength;
    read.replyDataOffset = byteCountByte + 1;
    return read;
}

int wordAt(const FRAME_PRO &request, int position)
{
    return request.frame[position] * 256 + request.frame[position + 1];
}

bool isWithin(int count, int most)
{
    return count >= 1 && count <= most;
}

} // namespace

bool isDegenerate(const FRAME_PRO &request)
{
    const int value = wordAt(request, valueByte);
    switch (request.frame[functionByte]) {
    case ReadHoldingRegisters:
        return request.sendLength != shortRequest || !isWithin(value, mostReadable)
            || request.replyDataLength != 2 * value
            || request.replyLength != replyAroundData + 2 * value;
    case WriteSingleRegister:
        return request.sendLength != shortRequest || request.replyLength != shortRequest;
    case WriteMultipleRegisters:
        return !isWithin(value, largestBlock) || request.replyLength != shortRequest
            || request.sendLength != headOfWriteMany + 2 * value + crcBytes;
    default:
        return true;
    }
}

FRAME_PRO statusWordRead(int station)
{
    return readOf(station, REG_OFFSETADDR[TypeSw], 1);
}

FRAME_PRO controlWordBroadcast(quint16 controlWord)
{
    return requestOf(0, WriteSingleRegister, REG_OFFSETADDR[TypeCw], controlWord);
}

QVector<FRAME_PRO> readsOfManyLengths(const FRAME_PRO &request)
{
    const int station = request.frame[stationByte];
    QVector<FRAME_PRO> reads { statusWordRead(station) };
    const int count = wordAt(request, valueByte);
    if (request.frame[functionByte] == ReadHoldingRegisters && count > 1)
        reads.append(readOf(station, wordAt(request, 2), count - 1));
    reads.append(readOf(station, REG_OFFSETADDR[TypeSw], 2)); // and the fault code
    for (int monitored = 3; monitored <= mostMonitored; ++monitored)
        reads.append(readOf(station, REG_OFFSETADDR[TypeD], monitored));
    return reads;
}

} // namespace dx4::host
