// SPDX-License-Identifier: MIT
// A line that keeps what passes over it.
#include "host/recording/recording_line.h"

#include "host/base/length.h"

#include <algorithm>

namespace dx4::host {
namespace {

/// USB adapters hand bytes over in lumps, by default up to 16 ms apart.
constexpr Duration longestLump = std::chrono::milliseconds(20);

} // namespace

RecordingLine::RecordingLine(Line &line, FrameRing &ring)
    : m_line(line)
    , m_ring(ring)
{
}

bool RecordingLine::send(const QByteArray &bytes)
{
    const Duration start = m_line.now();
    const bool sent = m_line.send(bytes);
    if (sent)
        m_ring.addRequest(start, bytes);
    return sent;
}

QByteArray RecordingLine::receive(int count, Duration deadline)
{
    QByteArray bytes = m_line.receive(count, deadline);
    // A wait that ends a little late still brought its bytes before the deadline.
    m_ring.addReplyBytes(std::min(m_line.now(), deadline), bytes,
                         settings().wireTime(lengthOf(bytes)) + longestLump);
    return bytes;
}

} // namespace dx4::host
