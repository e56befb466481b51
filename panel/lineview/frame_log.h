// SPDX-License-Identifier: MIT
// The frames of a line in words, each reply held against its request.
#pragma once

#include "host/line/line_settings.h"
#include "host/recording/frame_tap.h"

#include <QCoreApplication>
#include <QVector>

#include <deque>
#include <optional>

namespace dx4::panel {

/// One frame as it is listed, or the silence that came instead.
struct FrameLine {
    host::Duration time { 0 }; ///< since 1970 UTC
    int station = 0; ///< that was asked; 0 for all at once
    bool isRequest = true;
    bool isBad = false; ///< no good answer to its request
    QString words;
    std::optional<host::Duration> turnaround; ///< silence between request and reply
    QByteArray bytes; ///< empty for a silence
};

/// Which frames are wanted.
struct FrameFilter {
    int station = 0; ///< 0: all
    bool onlyBad = false; ///< bad replies, each with its request

    bool operator==(const FrameFilter &other) const
    {
        return station == other.station && onlyBad == other.onlyBad;
    }
};

/// Keeps the newest frames, and the newest bad ones besides: those are rare, and would be gone
/// among the others before anybody has looked.
class FrameLog {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::FrameLog)

public:
    static constexpr int mostLines = 500; ///< of each kind
    static constexpr int mostAtOnce = 500; ///< frames; of more the oldest are passed over

    /// @param settings  of the line, for the times of the wire
    explicit FrameLog(const host::LineSettings &settings);

    void take(const host::TappedFrames &taken);

    /// Oldest first.
    QVector<FrameLine> lines(const FrameFilter &filter) const;

    /// Frames that came faster than they were taken, and are not listed.
    quint64 missed() const { return m_missed; }

private:
    struct Request {
        FrameLine line;
        host::Duration time { 0 }; // of the line's clock
        int firstRegister = -1;
        bool isAnswered = false;
    };

    void takeRequest(const host::RecordedFrame &frame, host::Duration offset);
    void takeReply(const host::RecordedFrame &frame, host::Duration offset);
    FrameLine judged(const host::RecordedFrame &frame) const;
    void endRequest(host::Duration time);
    void add(const FrameLine &line);

    const host::LineSettings m_settings;
    std::deque<FrameLine> m_all;
    std::deque<FrameLine> m_bad;
    std::optional<Request> m_request; // the last one
    quint64 m_missed = 0;
};

/// The time of day of a moment since 1970, "12:34:56.789", as this machine has it.
QString timeOfDay(host::Duration time);

} // namespace dx4::panel
