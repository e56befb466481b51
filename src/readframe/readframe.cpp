// SPDX-License-Identifier: MIT
// Encoders of read requests, function 3.
#include "readframe/readframe.h"

#include "frames/frame_queue.h"
#include "frames/request_frame.h"
#include "registers/register_type.h"
#include "wire/wrap.h"

using namespace dx4;

namespace {

constexpr int replyHeadBytes = 3; // station, function code, byte count
constexpr int readRequestBytes = 6; // without CRC

void appendRead(const VARIABLE &var, RegisterAddress address)
{
    const int dataBytes = wrapMul(var.count, 2);
    const int replyBytes = wrapAdd(dataBytes, replyHeadBytes + crcBytes);
    FRAME_PRO &request = appendFrame(var, { replyBytes, replyHeadBytes, dataBytes });
    putRequestHead(request.frame, var.station, ReadHoldingRegisters, address);
    putWord(request.frame, 4, var.count);
    request.sendLength = putCrc(request.frame, readRequestBytes);
}

} // namespace

void readframe_oneword(VARIABLE &var)
{
    appendRead(var, fixedRegister(var.regType, var.address));
}

void readframe_word(VARIABLE &var)
{
    const bool isParameter = registerType(var.regType) == TypeF;
    appendRead(var, isParameter ? parameterRegister(var.address) : monitorRegister(var.address));
}
