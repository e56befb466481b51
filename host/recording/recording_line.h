// SPDX-License-Identifier: MIT
// A line that keeps what passes over it.
#pragma once

#include "host/line/line.h"
#include "host/recording/frame_ring.h"

namespace dx4::host {

/// Passes every call on to another line and notes frames in a ring. Bytes that were discarded are
/// not noted: nobody took them for an answer.
class RecordingLine : public Line {
public:
    /// @param line, ring  outlive this
    RecordingLine(Line &line, FrameRing &ring);

    bool open(QString *error) override { return m_line.open(error); }
    void close() override { m_line.close(); }
    bool isOpen() const override { return m_line.isOpen(); }
    const LineSettings &settings() const override { return m_line.settings(); }
    Duration now() const override { return m_line.now(); }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, Duration deadline) override;
    int discardInput() override { return m_line.discardInput(); }
    bool awaitSilence(Duration gap, Duration deadline) override
    {
        return m_line.awaitSilence(gap, deadline);
    }
    void setWaits(Waits &waits) override { m_line.setWaits(waits); }

private:
    Line &m_line;
    FrameRing &m_ring;
};

} // namespace dx4::host
