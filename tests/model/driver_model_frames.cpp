// SPDX-License-Identifier: MIT
// The model's request frames.
#include "driver_model.h"
#include "wrap.h"

namespace model {

namespace {

// Six type bases, then eleven group codes: a group is looked up 6 words behind the first base.
constexpr int offsetWords[17] = { 0xF000, 0xD000, 0x1001, 0x1002, 0x2000, 0x2001, 0xF0, 0xF1, 0xF2,
                                  0xF3,   0xF4,   0xF5,   0xF6,   0xF7,   0xF8,   0xF9, 0xFC };

struct WireAddress {
    unsigned char high;
    unsigned char low;
};

WireAddress groupAndIndex(int address)
{
    const int position = 6 + address / 256;
    const bool inTables = position >= 0 && position <= 16;
    return { inTables ? byteOf(offsetWords[position], 0) : static_cast<unsigned char>(0),
             byteOf(address, 0) };
}

WireAddress basePlus(int base, int address)
{
    const int sum = wrap(1LL * base + address);
    return { byteOf(sum, 1), byteOf(sum, 0) };
}

WireAddress readAddress(const VARIABLE &var)
{
    if (var.regType == QLatin1String("FU"))
        return basePlus(0x2001, var.address);
    if (var.regType == QLatin1String("SW"))
        return basePlus(0x2000, var.address);
    if (var.regType == QLatin1String("F"))
        return groupAndIndex(var.address);
    return { 0xD0, byteOf(var.address, 0) };
}

void putCrc(FRAME_PRO &request, int position)
{
    const int crc = crcOf(request.frame, position);
    request.frame[position] = byteOf(crc, 0);
    request.frame[position + 1] = byteOf(crc, 1);
}

FRAME_PRO startRequest(const VARIABLE &var, int function, WireAddress address)
{
    FRAME_PRO request;
    request.frame[0] = byteOf(var.station, 0);
    request.frame[1] = byteOf(function, 0);
    request.frame[2] = address.high;
    request.frame[3] = address.low;
    request.sendLength = 8;
    request.replyLength = 8;
    request.var = var;
    return request;
}

FRAME_PRO writeOne(const VARIABLE &var, WireAddress address)
{
    FRAME_PRO request = startRequest(var, 6, address);
    request.frame[4] = var.data[1];
    request.frame[5] = var.data[0];
    putCrc(request, 6);
    return request;
}

FRAME_PRO writeMany(const VARIABLE &var, WireAddress address)
{
    FRAME_PRO request = startRequest(var, 16, address);
    request.frame[4] = byteOf(var.count, 1);
    request.frame[5] = byteOf(var.count, 0);
    request.frame[6] = byteOf(2 * byteOf(var.count, 0), 0);
    for (int k = 0; k < var.count; ++k) {
        request.frame[7 + 2 * k] = var.data[2 * k + 1];
        request.frame[8 + 2 * k] = var.data[2 * k];
    }
    // Below 0 registers the CRC covers and overwrites part of the head.
    putCrc(request, 7 + 2 * var.count);
    request.sendLength = 9 + 2 * var.count;
    return request;
}

} // namespace

int crcOf(const unsigned char *bytes, int length)
{
    unsigned crc = 0xFFFF;
    for (int i = 0; i < length; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) {
            const bool carry = (crc & 1U) != 0;
            crc >>= 1;
            if (carry)
                crc ^= 0xA001U;
        }
    }
    return static_cast<int>(crc);
}

void DriverModel::appendReadFrame(const VARIABLE &var)
{
    FRAME_PRO request = startRequest(var, 3, readAddress(var));
    request.frame[4] = byteOf(var.count, 1);
    request.frame[5] = byteOf(var.count, 0);
    putCrc(request, 6);
    request.replyLength = wrap(2LL * var.count + 5);
    request.replyDataOffset = 3;
    request.replyDataLength = wrap(2LL * var.count);
    sendFrames.append(request);
}

void DriverModel::appendWriteFrame(const VARIABLE &var)
{
    const bool controlWord = var.regType == QLatin1String("CW");
    const bool frequency = var.regType == QLatin1String("FRE");
    if (controlWord || frequency) {
        if (var.count == 1)
            sendFrames.append(writeOne(var, basePlus(controlWord ? 0x1001 : 0x1002, var.address)));
        return;
    }
    const bool parameter = var.regType == QLatin1String("F");
    const WireAddress address = parameter ? groupAndIndex(var.address) : WireAddress { 0, 0 };
    const bool fitsFrame = var.count >= -3 && var.count <= 507;
    if (var.count == 1)
        sendFrames.append(writeOne(var, address));
    else if (fitsFrame)
        sendFrames.append(writeMany(var, address));
}

} // namespace model
