// SPDX-License-Identifier: MIT
// Finds the master's frames in the bytes that a port delivers.
#include "simulator/framer.h"

#include <limits>
#include <utility>

namespace dx4::sim {

namespace {

constexpr std::size_t shortestRequest = 8; // of those that end by themselves, CRC included
constexpr std::size_t endsWithAPause = std::numeric_limits<std::size_t>::max();

/// Length of the request that begins here, CRC included; endless when its function does not tell,
/// or not yet.
std::size_t expectedLength(const Bytes &bytes)
{
    if (bytes.size() < shortestRequest)
        return endsWithAPause;
    const unsigned function = bytes[1];
    if (function >= 1 && function <= 6)
        return shortestRequest;
    const bool severalValues = function == 15 || function == 16;
    return severalValues ? std::size_t { 9 } + bytes[6] : endsWithAPause;
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
    if (m_pending.size() >= length) {
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
