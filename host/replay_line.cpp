// SPDX-License-Identifier: MIT
// A line whose other end is a recording.
#include "host/replay_line.h"

#include "host/length.h"

#include <algorithm>

namespace dx4::host {
namespace {

QVector<RecordedFrame> fromFirstRequest(const QVector<RecordedFrame> &frames)
{
    int first = 0;
    while (first < frames.size() && !frames.at(first).isRequest)
        ++first;
    return frames.mid(first);
}

} // namespace

ReplayLine::ReplayLine(const QVector<RecordedFrame> &frames, const LineSettings &settings)
    : m_frames(fromFirstRequest(frames))
    , m_settings(settings)
{
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

bool ReplayLine::send(const QByteArray &bytes)
{
    m_now += m_settings.wireTime(lengthOf(bytes));
    m_input.clear();
    if (bytes.isEmpty() || bytes != nextRequest()) {
        ++m_unrecorded;
        return true;
    }
    ++m_played;
    for (++m_next; m_next < m_frames.size() && !m_frames.at(m_next).isRequest; ++m_next)
        m_input += m_frames.at(m_next).bytes;
    return true;
}

QByteArray ReplayLine::receive(int count, Duration deadline)
{
    const QByteArray bytes = m_input.left(count);
    m_input.remove(0, lengthOf(bytes));
    m_now += m_settings.wireTime(lengthOf(bytes));
    if (bytes.size() < count)
        m_now = std::max(m_now, deadline);
    return bytes;
}

int ReplayLine::discardInput()
{
    const int dropped = lengthOf(m_input);
    m_input.clear();
    return dropped;
}

bool ReplayLine::awaitSilence(Duration gap, Duration)
{
    m_now += gap;
    m_input.clear();
    return true;
}

} // namespace dx4::host
