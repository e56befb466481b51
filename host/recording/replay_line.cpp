// SPDX-License-Identifier: MIT
// A line whose other end is a recording.
#include "host/recording/replay_line.h"

#include "host/base/length.h"

#include <algorithm>

namespace dx4::host {
namespace {

QVector<RecordedFrame> fromFirstRequest(const QVector<RecordedFrame> &frames)
{
    const auto first = std::find_if(frames.begin(), frames.end(),
                                    [](const RecordedFrame &frame) { return frame.isRequest; });
    return frames.mid(static_cast<int>(first - frames.begin()));
}

} // namespace

ReplayLine::ReplayLine(const QVector<RecordedFrame> &frames, const LineSettings &settings)
    : m_frames(fromFirstRequest(frames))
    , m_line(
          [this](const QByteArray &request) {
              answer(request);
              return MemoryLine::Answer {};
          },
          settings)
{
    for (int i = 0; i < m_frames.size(); ++i) {
        if (m_frames.at(i).isRequest)
            m_lastPlaces.insert(m_frames.at(i).bytes, i);
    }
}

QByteArray ReplayLine::nextRequest() const
{
    return m_next < m_frames.size() ? m_frames.at(m_next).bytes : QByteArray();
}

QByteArray ReplayLine::requestAfterNext() const
{
    for (int i = m_next + 1; i < m_frames.size(); ++i) {
        if (m_frames.at(i).isRequest && m_frames.at(i).bytes != m_frames.at(m_next).bytes)
            return m_frames.at(i).bytes;
    }
    return {};
}

bool ReplayLine::isAhead(const QByteArray &request) const
{
    return m_lastPlaces.value(request, -1) >= m_next;
}

void ReplayLine::answer(const QByteArray &request)
{
    if (request.isEmpty() || request != nextRequest()) {
        ++m_unrecorded;
        return;
    }
    ++m_played;
    const Duration asked =
        m_frames.at(m_next).time + settings().wireTime(lengthOf(request)); // its last byte
    for (++m_next; m_next < m_frames.size() && !m_frames.at(m_next).isRequest; ++m_next) {
        const RecordedFrame &reply = m_frames.at(m_next);
        const Duration delay = reply.time - asked - settings().wireTime(lengthOf(reply.bytes));
        m_line.inject(reply.bytes, std::max(delay, Duration { 0 }));
    }
}

} // namespace dx4::host
