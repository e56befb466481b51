// SPDX-License-Identifier: MIT
// A line whose frames are shown as they pass.
#pragma once

#include "host/line/line.h"

#include <functional>
#include <optional>

namespace dx4::cli {

/// One line of text for a frame: "> 01 03 D0 00 00 01 BC CA  station 1, read request, D 0
/// (0xD000), 1 registers".
///
/// @param firstRegister  of the request that a reply answers; -1: not known
QString frameLine(const QByteArray &frame, bool isRequest, int firstRegister = -1);

/// Passes every call on to another line and hands each frame on as text, with the time of day:
/// requests before they are sent, replies as soon as they are whole, and what is no whole frame
/// when the line goes on. A reply comes with its turnaround, the silence between the last bit of
/// the request and its first one; what the system itself takes for handing bytes over counts in.
class TracingLine : public host::Line {
public:
    using Writer = std::function<void(const QString &)>;

    /// @param line   outlives this
    /// @param write  takes one line of text without its end, and must not wait
    TracingLine(host::Line &line, Writer write);
    ~TracingLine() override;

    bool open(QString *error) override { return m_line.open(error); }
    void close() override;
    bool isOpen() const override { return m_line.isOpen(); }
    const host::LineSettings &settings() const override { return m_line.settings(); }
    host::Duration now() const override { return m_line.now(); }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, host::Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(host::Duration gap, host::Duration deadline) override;
    void setWaits(host::Waits &waits) override { m_line.setWaits(waits); }

private:
    void heard(const QByteArray &bytes);
    void tellHeard();
    void tellEnd();
    void tell(const QString &text, host::Duration at);
    QString turnaroundText() const;

    host::Line &m_line;
    Writer m_write;
    QByteArray m_heard; // bytes that are no whole frame yet
    host::Duration m_heardAt { 0 }; // the last of them
    std::optional<host::Duration> m_sentAt; // end of a request that nothing came for yet
    int m_firstRegister = -1; // of the last request
};

} // namespace dx4::cli
