// SPDX-License-Identifier: MIT
// The frames of a line for readers on other threads.
#include "host/recording/frame_tap.h"

#include "host/recording/pcap_file.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

/// One request with what came before it: the rest was handed over already. Noise in between makes
/// some frames more.
constexpr int framesInHand = 64;

} // namespace

FrameTap::FrameTap(int capacity)
    : m_capacity(static_cast<std::size_t>(std::max(capacity, 1)))
{
}

void FrameTap::add(const QVector<RecordedFrame> &frames, Duration wallClockOffset)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const RecordedFrame &frame : frames) {
        m_frames.push_back(frame);
        if (m_frames.size() > m_capacity)
            m_frames.pop_front();
    }
    m_next += static_cast<quint64>(frames.size());
    m_offset = wallClockOffset;
}

TappedFrames FrameTap::since(quint64 first) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const quint64 oldest = m_next - m_frames.size();
    const quint64 begin = std::clamp(first, oldest, m_next);
    TappedFrames result;
    result.next = m_next;
    result.missed = first < oldest ? oldest - first : 0;
    result.wallClockOffset = m_offset;
    for (quint64 number = begin; number < m_next; ++number)
        result.frames.append(m_frames[number - oldest]);
    return result;
}

quint64 FrameTap::next() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_next;
}

TappingLine::TappingLine(std::unique_ptr<Line> line, std::shared_ptr<FrameTap> tap)
    : m_line(std::move(line))
    , m_tap(std::move(tap))
    , m_ring(framesInHand)
    , m_recorder(*m_line, m_ring)
{
}

bool TappingLine::send(const QByteArray &bytes)
{
    const bool sent = m_recorder.send(bytes);
    const QVector<RecordedFrame> ended = m_ring.takeEnded();
    if (!ended.isEmpty())
        m_tap->add(ended, wallClockOffset(now()));
    return sent;
}

} // namespace dx4::host
