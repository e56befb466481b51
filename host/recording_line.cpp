// SPDX-License-Identifier: MIT
// A line that keeps what passes over it.
#include "host/recording_line.h"

namespace dx4::host {

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
    const QByteArray bytes = m_line.receive(count, deadline);
    m_ring.addReplyBytes(m_line.now(), bytes);
    return bytes;
}

} // namespace dx4::host
