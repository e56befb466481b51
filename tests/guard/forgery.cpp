// SPDX-License-Identifier: MIT
// Bytes that pass for a frame though nobody sent one.
#include "forgery.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int lastStation = 8; // of those that are played
constexpr int exceptionLength = 5;
constexpr int writeReplyLength = 8;
constexpr int longest = 256;

} // namespace

void Forgery::Start::add(int byte)
{
    if (length < static_cast<int>(head.size()))
        head[static_cast<std::size_t>(length)] = byte;
    ++length;
    crc ^= static_cast<unsigned>(byte);
    for (int bit = 0; bit < 8; ++bit)
        crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
}

bool Forgery::Start::mayGoOn() const
{
    const int asked = head[1] & 0x7F;
    const bool isKnown = asked == 3 || asked == 6 || asked == 16;
    return length < longest && (length < 2 || isKnown);
}

/// Whether it has the length of a reply with its function, and the CRC over all of it, its own
/// included, is 0 as it is for every frame. An echo has to be equal to what was sent in each byte,
/// which no noise is.
bool Forgery::Start::isWhole() const
{
    switch (head[1]) {
    case 3:
        return crc == 0 && length > exceptionLength && length == 5 + head[2];
    case 6:
    case 16:
        return crc == 0 && length == writeReplyLength;
    default:
        return crc == 0 && length == exceptionLength;
    }
}

bool Forgery::admits(const QByteArray &bytes, bool isFrame)
{
    std::vector<Start> starts = m_starts;
    for (int i = 0; i < bytes.size(); ++i) {
        const int byte = static_cast<unsigned char>(bytes.at(i));
        if (byte >= 1 && byte <= lastStation)
            starts.emplace_back(isFrame && i == 0);
        for (Start &start : starts)
            start.add(byte);
        const bool isForged = std::any_of(starts.begin(), starts.end(), [&](const Start &start) {
            return start.isWhole() && !(start.isSent && start.length == bytes.size());
        });
        if (isForged)
            return false;
        starts.erase(std::remove_if(starts.begin(), starts.end(),
                                    [](const Start &start) { return !start.mayGoOn(); }),
                     starts.end());
    }
    m_starts = std::move(starts);
    return true;
}
