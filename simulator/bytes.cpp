// SPDX-License-Identifier: MIT
// Bytes of the line: frames, their CRC and their text form.
#include "simulator/bytes.h"

#include "wire/crc16.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace dx4::sim {

namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

std::optional<int> digitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return std::nullopt;
}

} // namespace

std::uint16_t crcOf(const Bytes &bytes, std::size_t length)
{
    return crc16(bytes.data(), static_cast<int>(std::min(length, bytes.size())));
}

Bytes withCrc(Bytes payload)
{
    const unsigned crc = crcOf(payload, payload.size());
    payload.push_back(static_cast<std::uint8_t>(crc & 0xFFU));
    payload.push_back(static_cast<std::uint8_t>(crc >> 8));
    return payload;
}

void renewCrc(Bytes &frame)
{
    if (frame.size() < smallestFrame)
        return;
    frame.resize(frame.size() - 2);
    frame = withCrc(std::move(frame));
}

bool hasGoodCrc(const Bytes &frame)
{
    if (frame.size() < smallestFrame)
        return false;
    const unsigned crc = crcOf(frame, frame.size() - 2);
    return frame[frame.size() - 2] == (crc & 0xFFU) && frame.back() == (crc >> 8);
}

std::string toHex(const Bytes &bytes)
{
    std::string text;
    for (std::uint8_t byte : bytes) {
        if (!text.empty())
            text += ' ';
        text += hexDigits[byte >> 4];
        text += hexDigits[byte & 0xF];
    }
    return text;
}

Bytes fromHex(const std::string &hex)
{
    Bytes bytes;
    std::optional<int> high;
    for (char character : hex) {
        if (character == ' ')
            continue;
        const std::optional<int> value = digitValue(character);
        if (!value)
            break;
        if (high)
            bytes.push_back(static_cast<std::uint8_t>(*high * 16 + *value));
        high = high ? std::nullopt : value;
    }
    return bytes;
}

std::uint16_t wordAt(const Bytes &frame, std::size_t offset)
{
    if (offset + 1 >= frame.size())
        return 0;
    return static_cast<std::uint16_t>(frame[offset] * 256 + frame[offset + 1]);
}

} // namespace dx4::sim
