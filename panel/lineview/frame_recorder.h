// SPDX-License-Identifier: MIT
// Frames of the line into a file, on a thread of its own.
#pragma once

#include "host/recording/frame_tap.h"

#include <QString>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace dx4::panel {

/// Writes what passes the line into a capture. The disk may be slow, full or gone: nobody but this
/// waits for it.
class FrameRecorder {
public:
    enum class Stage {
        Idle, ///< nothing was recorded yet
        Exists, ///< the file is there, and nobody said that it may be replaced
        Recording,
        Ending, ///< the last frames are on their way to the disk
        Ended,
        Failed, ///< see State::error; what was written before stays
    };

    struct State {
        Stage stage = Stage::Idle;
        QString file;
        quint64 frames = 0; ///< in the file
        quint64 missed = 0; ///< the disk was too slow for them
        QString error; ///< "FILE: why"
    };

    explicit FrameRecorder(std::shared_ptr<const host::FrameTap> tap);

    /// Ends what is recorded, and waits for it.
    ~FrameRecorder();
    FrameRecorder(const FrameRecorder &) = delete;
    FrameRecorder &operator=(const FrameRecorder &) = delete;

    /// Begins with the next frame. Does nothing while it records.
    ///
    /// @param mayReplace  a file that is there already
    void begin(const QString &file, bool mayReplace);

    /// Ends the recording; the stage tells when it has.
    void end();

    State state() const;
    bool isBusy() const;

    /// Waits until nothing is recorded any more, after end() or a failure.
    void join();

private:
    void run(const QString &file, bool mayReplace, quint64 next);
    void setState(const State &state);
    bool waitForMore();

    const std::shared_ptr<const host::FrameTap> m_tap;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread;
    State m_state;
    bool m_isEnding = false;
};

} // namespace dx4::panel
