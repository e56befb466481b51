// SPDX-License-Identifier: MIT
// A line whose waits end when the program is asked to end.
#pragma once

#include "host/line/line.h"

#include <optional>

namespace dx4::cli {

/// Passes every call on to another line. Once the program is asked to end, no wait for a reply
/// lasts longer than 300 ms: Ctrl-C acts at once also where the response timeout is long.
class InterruptibleLine : public host::Line {
public:
    /// @param line  outlives this
    explicit InterruptibleLine(host::Line &line)
        : m_line(line)
    {
    }

    /// From now on waits take their time again: what follows is the safe stop.
    void waitInFull() { m_inFull = true; }

    bool open(QString *error) override { return m_line.open(error); }
    void close() override { m_line.close(); }
    bool isOpen() const override { return m_line.isOpen(); }
    const host::LineSettings &settings() const override { return m_line.settings(); }
    host::Duration now() const override { return m_line.now(); }
    bool send(const QByteArray &bytes) override { return m_line.send(bytes); }
    QByteArray receive(int count, host::Duration deadline) override;
    int discardInput() override { return m_line.discardInput(); }
    bool awaitSilence(host::Duration gap, host::Duration deadline) override
    {
        return m_line.awaitSilence(gap, deadline);
    }
    void setWaits(host::Waits &waits) override { m_line.setWaits(waits); }

private:
    host::Line &m_line;
    bool m_inFull = false;
    std::optional<host::Duration> m_askedAt; ///< moment when the program was seen to be asked
};

} // namespace dx4::cli
