// SPDX-License-Identifier: MIT
// Bytes of the line: frames, their CRC and their text form.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace dx4::sim {

using Bytes = std::vector<std::uint8_t>;

/// Smallest frame with a meaning: station, function, two bytes of CRC.
inline constexpr std::size_t smallestFrame = 4;

/// Modbus CRC-16 of the first `length` bytes, of all where there are fewer; goes on the line low
/// byte first.
std::uint16_t crcOf(const Bytes &bytes, std::size_t length);

/// `payload` with its CRC behind it.
Bytes withCrc(Bytes payload);

/// Replaces the last two bytes by the CRC of those before; leaves frames below smallestFrame alone.
void renewCrc(Bytes &frame);

/// Whether the last two bytes are the CRC of those before; frames below smallestFrame have none.
bool hasGoodCrc(const Bytes &frame);

/// Upper-case hex with blanks between the bytes.
std::string toHex(const Bytes &bytes);

/// The bytes of a hex text with or without blanks; any other character ends the text, and half a
/// byte is left out.
Bytes fromHex(const std::string &hex);

/// Two bytes, high byte first, at `offset`; 0 where the frame is too short.
std::uint16_t wordAt(const Bytes &frame, std::size_t offset);

} // namespace dx4::sim
