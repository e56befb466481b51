// SPDX-License-Identifier: MIT
// A line whose other end is a recording.
#pragma once

#include "host/frame_ring.h"
#include "host/line.h"

namespace dx4::host {

/// Answers each request as the recording did. Time is virtual and passes only while somebody
/// waits.
///
/// A request that is not the recording's next one is answered by silence and does not move the
/// recording on: a host that keeps a dead station off the line fails such requests itself, and
/// they leave no frame.
class ReplayLine : public Line {
public:
    /// Replies ahead of the first request are left out, their request was forgotten.
    ReplayLine(const QVector<RecordedFrame> &frames, const LineSettings &settings);

    bool open(QString *) override { return true; }
    void close() override { }
    bool isOpen() const override { return true; }
    const LineSettings &settings() const override { return m_settings; }
    Duration now() const override { return m_now; }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(Duration gap, Duration deadline) override;

    /// The recording's next request; empty when all were played.
    QByteArray nextRequest() const;

    /// The first request behind that one which is not its repetition; empty when there is none.
    QByteArray requestAfterNext() const;

    /// Requests of the recording that were played.
    int played() const { return m_played; }

    /// Requests sent that were not the recording's next one.
    int unrecorded() const { return m_unrecorded; }

private:
    const QVector<RecordedFrame> m_frames;
    LineSettings m_settings;
    int m_next = 0; ///< position of the next request
    int m_played = 0;
    int m_unrecorded = 0;
    Duration m_now { 0 };
    QByteArray m_input;
};

} // namespace dx4::host
