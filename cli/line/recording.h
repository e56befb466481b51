// SPDX-License-Identifier: MIT
// A recording that grows while the line is polled.
#pragma once

#include "capture/pcap.h"
#include "cli/console/filled.h"
#include "host/recording/frame_ring.h"

#include <QFile>

#include <memory>
#include <sstream>

namespace dx4::cli {

/// Writes frames to a network capture as they come, so that whatever ends the program leaves a file
/// that can be read up to there.
class Recording {
public:
    explicit Recording(QString path);

    /// Whether the file can be replaced, asked before there is anything to lose: one that exists
    /// stays as it is, one that does not is not left behind.
    ///
    /// @param force  also one that holds something else than a recording
    bool canBegin(bool force);

    /// Puts an empty recording in the file's place, or leaves it as it was.
    ///
    /// @param lineNow  the line's clock, for the times of the frames
    bool begin(host::Duration lineNow);

    /// Adds frames and hands them to the system. What does not fit as a whole is taken out again,
    /// and nothing is added from then on.
    ///
    /// @return false when something could not be written, now or before; see error()
    bool add(const QVector<host::RecordedFrame> &frames);

    /// Makes sure that all of it is on the disk and still has its name.
    bool end();

    quint64 frames() const { return m_frames; } ///< in the file
    const QString &error() const { return m_error; } ///< "FILE: why"; empty: all went well
    bool failed() const { return !m_error.isEmpty(); }

private:
    bool write();
    bool fail(const QString &error);

    const QString m_path;
    QFile m_file;
    std::ostringstream m_waiting;
    std::unique_ptr<capture::PcapWriter> m_writer;
    host::Duration m_offset { 0 }; ///< from the line's clock to the time since 1970
    qint64 m_size = 0; ///< bytes in the file
    quint64 m_frames = 0;
    QString m_error;
};

} // namespace dx4::cli
