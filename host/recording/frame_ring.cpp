// SPDX-License-Identifier: MIT
// The last frames of a line with their times, kept at all times.
#include "host/recording/frame_ring.h"

#include <algorithm>
#include <utility>

namespace dx4::host {

bool operator==(const RecordedFrame &a, const RecordedFrame &b)
{
    return a.time == b.time && a.isRequest == b.isRequest && a.bytes == b.bytes;
}

FrameRing::FrameRing(int capacity)
    : m_capacity(static_cast<std::size_t>(std::max(capacity, 1)))
{
}

void FrameRing::addRequest(Duration time, const QByteArray &bytes)
{
    add({ time, true, bytes });
}

void FrameRing::addReplyBytes(Duration time, const QByteArray &bytes, Duration longestPause)
{
    if (bytes.isEmpty())
        return;
    const bool continues = !m_frames.empty() && !m_frames.back().isRequest
        && time - m_frames.back().time <= longestPause;
    if (!continues)
        return add({ time, false, bytes });
    m_frames.back().time = time;
    m_frames.back().bytes += bytes;
}

QVector<RecordedFrame> FrameRing::frames() const
{
    QVector<RecordedFrame> result;
    for (const RecordedFrame &frame : m_frames)
        result.append(frame);
    return result;
}

QVector<RecordedFrame> FrameRing::takeEnded()
{
    QVector<RecordedFrame> ended;
    while (m_frames.size() > 1 || (m_frames.size() == 1 && m_frames.front().isRequest)) {
        ended.append(std::move(m_frames.front()));
        m_frames.pop_front();
    }
    return ended;
}

void FrameRing::add(RecordedFrame frame)
{
    m_frames.push_back(std::move(frame));
    if (m_frames.size() <= m_capacity)
        return;
    m_frames.pop_front();
    ++m_forgotten;
}

} // namespace dx4::host
