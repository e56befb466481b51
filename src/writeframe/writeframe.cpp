// SPDX-License-Identifier: MIT
// Encoders of write requests, functions 6 and 16.
#include "writeframe/writeframe.h"

#include "frames/frame_queue.h"
#include "frames/request_frame.h"
#include "registers/register_type.h"
#include "wire/byte_order.h"

using namespace dx4;

namespace {

constexpr int singleWriteBytes = 6; // without CRC
constexpr int multipleWriteHeadBytes = 7; // up to and with the byte count
constexpr ExpectedReply echo = { shortFrameBytes, 0, 0 };

// The largest count whose frame, CRC included, still fits the record, and the smallest whose CRC
// still lies behind the station byte.
constexpr int largestCount = (recordBytes - multipleWriteHeadBytes - crcBytes) / 2;
constexpr int smallestCount = -((multipleWriteHeadBytes - 1) / 2);
static_assert(largestCount == 507 && smallestCount == -3);

void appendSingleWrite(const VARIABLE &var, RegisterAddress address)
{
    FRAME_PRO &request = appendFrame(var, echo);
    putRequestHead(request.frame, var.station, WriteSingleRegister, address);
    swapRegisters(var.data, request.frame + 4, 1);
    request.sendLength = putCrc(request.frame, singleWriteBytes);
}

void appendMultipleWrite(const VARIABLE &var, RegisterAddress address)
{
    FRAME_PRO &request = appendFrame(var, echo);
    putRequestHead(request.frame, var.station, WriteMultipleRegisters, address);
    putWord(request.frame, 4, var.count);
    request.frame[6] = lowByte(2 * (var.count & 0xFF));
    swapRegisters(var.data, request.frame + multipleWriteHeadBytes, var.count);
    // With a count below 0 the CRC covers less than the head and overwrites its end.
    request.sendLength = putCrc(request.frame, multipleWriteHeadBytes + 2 * var.count);
}

} // namespace

void writeframe_oneword(VARIABLE &var)
{
    if (var.count == 1)
        appendSingleWrite(var, fixedRegister(var.regType, var.address));
}

void writeframe_word(VARIABLE &var)
{
    const bool isParameter = registerType(var.regType) == TypeF;
    const RegisterAddress address =
        isParameter ? parameterRegister(var.address) : RegisterAddress { 0, 0 };
    const bool fitsFrame = var.count >= smallestCount && var.count <= largestCount;
    if (var.count == 1)
        appendSingleWrite(var, address);
    else if (fitsFrame)
        appendMultipleWrite(var, address);
}
