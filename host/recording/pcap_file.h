// SPDX-License-Identifier: MIT
// Recorded frames in a file that Wireshark decodes, and back.
#pragma once

#include "capture/pcap.h"
#include "host/recording/frame_ring.h"

#include <QString>

#include <optional>

namespace dx4::host {

/// What has to be added to a moment of the line's clock to get the time since 1970 UTC.
///
/// @param lineNow  the line's clock at this moment
Duration wallClockOffset(Duration lineNow);

/// The frame as capture::PcapWriter takes it. @param offset  added to its time
capture::Frame outward(const RecordedFrame &frame, Duration offset);

/// Writes the frames in the pcap format; shown by: tshark -r FILE -o mbrtu.udp.port:502 -V
///
/// @param path    file, replaced as a whole or not at all
/// @param offset  added to every time, see wallClockOffset(); the sum is not negative
/// @param error   out: which file and why not; may be null
bool writePcap(const QString &path, const QVector<RecordedFrame> &frames, Duration offset,
               QString *error);

/// Bytes at the beginning of a file that tell whether it is a recording.
inline constexpr int pcapHeadBytes = 24;

/// Whether a file that begins so is a recording of this host or of the simulator, maybe cut short.
bool isPcap(const QByteArray &head);

/// Reads a recording of this host or of the simulator; times are as in the file.
///
/// @param error  out: which file and what is wrong with it; may be null
std::optional<QVector<RecordedFrame>> readPcap(const QString &path, QString *error);

} // namespace dx4::host
