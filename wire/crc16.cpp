// SPDX-License-Identifier: MIT
// CRC-16 of Modbus RTU, eight bytes a step instead of one bit.
#include "wire/crc16.h"

#include <array>

namespace dx4 {
namespace {

constexpr unsigned reflectedPolynomial = 0xA001;
constexpr unsigned initialValue = 0xFFFF;
constexpr int bytesPerStep = 8;

using CrcTable = std::array<std::array<std::uint16_t, 256>, bytesPerStep>;

constexpr unsigned shiftOut(unsigned crc, int bits)
{
    for (int bit = 0; bit < bits; ++bit)
        crc = (crc & 1U) ? (crc >> 1) ^ reflectedPolynomial : crc >> 1;
    return crc;
}

// Row k holds the CRC of each byte value with k zero bytes behind it, so that the bytes of a step
// can be looked up independently and combined.
constexpr CrcTable makeTable()
{
    CrcTable table {};
    for (unsigned value = 0; value < 256; ++value) {
        unsigned crc = value;
        for (auto &row : table) {
            crc = shiftOut(crc, 8);
            row[value] = static_cast<std::uint16_t>(crc);
        }
    }
    return table;
}

constexpr CrcTable table = makeTable();

} // namespace

std::uint16_t crc16(const unsigned char *bytes, int length)
{
    unsigned crc = initialValue;
    for (; length >= bytesPerStep; length -= bytesPerStep, bytes += bytesPerStep) {
        crc = unsigned { table[7][(crc ^ bytes[0]) & 0xFF] } ^ table[6][(crc >> 8) ^ bytes[1]]
            ^ table[5][bytes[2]] ^ table[4][bytes[3]] ^ table[3][bytes[4]] ^ table[2][bytes[5]]
            ^ table[1][bytes[6]] ^ table[0][bytes[7]];
    }
    for (; length > 0; --length, ++bytes)
        crc = (crc >> 8) ^ table[0][(crc ^ *bytes) & 0xFF];
    return static_cast<std::uint16_t>(crc);
}

} // namespace dx4
