// SPDX-License-Identifier: MIT
// Finds the master's frames in the bytes that a port delivers.
#include "simulator/framer.h"

#include <utility>

namespace dx4::sim {

namespace {

/// Length of the request that begins here, CRC included; 0 when its function does not tell yet.
std::size_t expectedLength(const Bytes &bytes)
{
    if (bytes.size() < smallestFrame)
        return 0;
    const unsigned function = bytes[1];
    if (function >= 1 && function <= 6)
        return 8;
    const bool severalValues = function == 15 || function == 16;
    if (severalValues && bytes.size() > 6)
        return std::size_t { 9 } + bytes[6];
    return 0;
}

} // namespace

void Framer::push(const Bytes &bytes, Micros now)
{
    m_pending.insert(m_pending.end(), bytes.begin(), bytes.end());
    m_lastByte = now;
}

std::optional<Bytes> Framer::take(Micros now)
{
    const std::size_t length = expectedLength(m_pending);
    if (length > 0 && m_pending.size() >= length) {
        const auto end = m_pending.begin() + static_cast<std::ptrdiff_t>(length);
        Bytes frame(m_pending.begin(), end);
        if (hasGoodCrc(frame)) {
            m_pending.erase(m_pending.begin(), end);
            return frame;
        }
    }
    if (m_pending.empty() || now - m_lastByte < m_gap)
        return std::nullopt;
    return std::exchange(m_pending, {});
}

std::optional<Micros> Framer::endsAt() const
{
    if (m_pending.empty())
        return std::nullopt;
    return m_lastByte + m_gap;
}

} // namespace dx4::sim
