// SPDX-License-Identifier: MIT
// The frames of a line for readers on other threads.
#pragma once

#include "host/line/line.h"
#include "host/recording/frame_ring.h"
#include "host/recording/recording_line.h"

#include <deque>
#include <memory>
#include <mutex>

namespace dx4::host {

/// Frames that a reader has not seen yet.
struct TappedFrames {
    QVector<RecordedFrame> frames; ///< oldest first
    quint64 next = 0; ///< what FrameTap::since() wants the next time
    quint64 missed = 0; ///< forgotten before they were asked for
    Duration wallClockOffset { 0 }; ///< added to their times: since 1970 UTC; as wallClockOffset()
};

/// Keeps the newest frames of a line for any number of readers, each at its own pace. Any thread
/// may make any call; none waits for more than a few moves in memory. A reader that stays away
/// holds nobody: it misses the oldest frames, and is told how many.
class FrameTap {
public:
    /// @param capacity  frames, at least 1; 4096 are some minutes of a line at 9600 bit/s
    explicit FrameTap(int capacity = 4096);

    /// @param wallClockOffset  as it was when the frames passed
    void add(const QVector<RecordedFrame> &frames, Duration wallClockOffset);

    /// Frames from a number on.
    ///
    /// @param first  TappedFrames::next of the call before; 0 the first time
    TappedFrames since(quint64 first) const;

    /// The number of the next frame, for a reader that wants only what comes.
    quint64 next() const;

private:
    const std::size_t m_capacity;
    mutable std::mutex m_mutex;
    std::deque<RecordedFrame> m_frames;
    quint64 m_next = 0; ///< number of the frame that comes next
    Duration m_offset { 0 };
};

/// Passes every call on to another line and hands its frames to a tap. A reply is handed over with
/// the request that follows it: until then bytes may be added to it.
class TappingLine : public Line {
public:
    /// @param line  not null
    TappingLine(std::unique_ptr<Line> line, std::shared_ptr<FrameTap> tap);

    bool open(QString *error) override { return m_line->open(error); }
    void close() override { m_line->close(); }
    bool isOpen() const override { return m_line->isOpen(); }
    const LineSettings &settings() const override { return m_line->settings(); }
    Duration now() const override { return m_line->now(); }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, Duration deadline) override
    {
        return m_recorder.receive(count, deadline);
    }
    int discardInput() override { return m_line->discardInput(); }
    bool awaitSilence(Duration gap, Duration deadline) override
    {
        return m_line->awaitSilence(gap, deadline);
    }
    void setWaits(Waits &waits) override { m_line->setWaits(waits); }

private:
    const std::unique_ptr<Line> m_line;
    const std::shared_ptr<FrameTap> m_tap;
    FrameRing m_ring;
    RecordingLine m_recorder;
};

} // namespace dx4::host
