// SPDX-License-Identifier: MIT
// The last frames of a line with their times, kept at all times.
#pragma once

#include "host/line/line_settings.h"

#include <QByteArray>
#include <QVector>

#include <deque>

namespace dx4::host {

/// One frame as the line carried it, CRC included, damaged or not.
struct RecordedFrame {
    Duration time { 0 }; ///< request: when it was handed to the line; reply: its last byte
    bool isRequest = true;
    QByteArray bytes;
};

bool operator==(const RecordedFrame &a, const RecordedFrame &b);

/// Keeps the newest frames and forgets the oldest. Cheap enough to run always, so that the minute
/// before a fault can still be looked at after it.
class FrameRing {
public:
    /// @param capacity  frames, at least 1; 4096 are some minutes of a line at 9600 bit/s
    explicit FrameRing(int capacity = 4096);

    void addRequest(Duration time, const QByteArray &bytes);

    /// Bytes that arrived. They belong to the reply before when no request and no longer pause lies
    /// between. Nothing is kept for no bytes.
    ///
    /// @param time          of the last byte
    /// @param longestPause  from the last byte of the reply before to `time`
    void addReplyBytes(Duration time, const QByteArray &bytes, Duration longestPause);

    /// Oldest first.
    QVector<RecordedFrame> frames() const;

    /// Takes the frames out that nothing can be added to any more, oldest first: all but a reply
    /// that came last. For whoever keeps them elsewhere while the line is polled.
    QVector<RecordedFrame> takeEnded();

    /// Frames that were forgotten so far.
    quint64 forgotten() const { return m_forgotten; }

private:
    void add(RecordedFrame frame);

    std::size_t m_capacity;
    quint64 m_forgotten = 0;
    std::deque<RecordedFrame> m_frames;
};

} // namespace dx4::host
