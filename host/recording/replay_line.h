// SPDX-License-Identifier: MIT
// A line whose other end is a recording.
#pragma once

#include "host/line/memory_line.h"
#include "host/recording/frame_ring.h"

#include <QHash>

namespace dx4::host {

/// Answers each request as the recording did, after the time that it took then. Time is virtual
/// and passes only while somebody waits.
///
/// A request that is not the recording's next one is answered by silence and does not move the
/// recording on: a host that keeps a dead station off the line fails such requests itself, and
/// they leave no frame.
class ReplayLine : public Line {
public:
    /// Replies ahead of the first request are left out, their request was forgotten.
    ///
    /// @param settings  those of the recorded line: with a shorter timeout replies come too late
    ReplayLine(const QVector<RecordedFrame> &frames, const LineSettings &settings);

    bool open(QString *error) override { return m_line.open(error); }
    void close() override { m_line.close(); }
    bool isOpen() const override { return m_line.isOpen(); }
    const LineSettings &settings() const override { return m_line.settings(); }
    Duration now() const override { return m_line.now(); }
    bool send(const QByteArray &bytes) override { return m_line.send(bytes); }
    QByteArray receive(int count, Duration deadline) override
    {
        return m_line.receive(count, deadline);
    }
    int discardInput() override { return m_line.discardInput(); }
    bool awaitSilence(Duration gap, Duration deadline) override
    {
        return m_line.awaitSilence(gap, deadline);
    }

    /// The recording's next request; empty when all were played.
    QByteArray nextRequest() const;

    /// The first request behind that one which is not its repetition; empty when there is none.
    QByteArray requestAfterNext() const;

    /// Whether a request stands anywhere in what was not played yet.
    bool isAhead(const QByteArray &request) const;

    /// Counts a request that was not sent, as the recording has no answer to it.
    void noteUnrecorded() { ++m_unrecorded; }

    /// Requests of the recording that were played.
    int played() const { return m_played; }

    /// Requests that were not the recording's next one, sent or not.
    int unrecorded() const { return m_unrecorded; }

private:
    void answer(const QByteArray &request);

    const QVector<RecordedFrame> m_frames;
    QHash<QByteArray, int> m_lastPlaces; ///< of each request; a long recording is not searched
    int m_next = 0; ///< position of the next request
    int m_played = 0;
    int m_unrecorded = 0;
    MemoryLine m_line;
};

} // namespace dx4::host
