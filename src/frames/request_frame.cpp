// SPDX-License-Identifier: MIT
// The parts that every Modbus RTU request has in common.
#include "frames/request_frame.h"

#include "wire/byte_order.h"
#include "wire/crc16.h"

namespace dx4 {

void putRequestHead(unsigned char *frame, int station, FunctionCode function,
                    RegisterAddress address)
{
    frame[0] = lowByte(station);
    frame[1] = function;
    frame[2] = address.high;
    frame[3] = address.low;
}

void putWord(unsigned char *frame, int position, int word)
{
    frame[position] = highByte(word);
    frame[position + 1] = lowByte(word);
}

int putCrc(unsigned char *frame, int length)
{
    const int crc = crc16(frame, length);
    frame[length] = lowByte(crc);
    frame[length + 1] = highByte(crc);
    return length + crcBytes;
}

} // namespace dx4
