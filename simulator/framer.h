// SPDX-License-Identifier: MIT
// Finds the master's frames in the bytes that a port delivers.
#pragma once

#include "simulator/bytes.h"
#include "simulator/clock.h"

#include <optional>

namespace dx4::sim {

/// Cuts a stream of bytes into requests. A request of function 1 to 6, 15 or 16 ends where its
/// length says, given that its CRC is good there; anything else ends with a pause.
class Framer {
public:
    /// `gap` is the pause that ends a frame which does not end by itself. A pseudo-terminal
    /// delivers late rather than evenly, so it may be longer than the line's own gap.
    explicit Framer(Micros gap)
        : m_gap(gap)
    {
    }

    /// Takes bytes that came in at `now`.
    void push(const Bytes &bytes, Micros now);

    /// The next complete frame; none while it is still coming in.
    std::optional<Bytes> take(Micros now);

    /// Drops what has come in so far.
    void clear() { m_pending.clear(); }

    /// When take() will give what is there even if nothing more comes; none while nothing is there.
    std::optional<Micros> endsAt() const;

private:
    Micros m_gap;
    Micros m_lastByte { 0 };
    Bytes m_pending;
};

} // namespace dx4::sim
