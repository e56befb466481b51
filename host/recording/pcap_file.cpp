// SPDX-License-Identifier: MIT
// Recorded frames in a file that Wireshark decodes, and back.
#include "host/recording/pcap_file.h"

#include "host/base/whole_file.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <fstream>
#include <sstream>

namespace dx4::host {
namespace {

RecordedFrame inward(const capture::Frame &frame)
{
    return { frame.time, frame.sender == capture::Sender::Master,
             QByteArray(reinterpret_cast<const char *>(frame.bytes.data()),
                        static_cast<int>(frame.bytes.size())) };
}

void tell(QString *error, const QString &path, const QString &why)
{
    if (error)
        *error = QStringLiteral("%1: %2").arg(path, why);
}

/// What capture programs write unless they are told otherwise. Leaves the stream at its begin, or
/// failed where the file is shorter than any capture.
bool isPcapng(std::istream &in)
{
    constexpr std::array<char, 4> sectionHead { '\n', '\r', '\r', '\n' };
    std::array<char, 4> head {};
    in.read(head.data(), head.size());
    in.seekg(0);
    return head == sectionHead;
}

} // namespace

Duration wallClockOffset(Duration lineNow)
{
    const auto wall = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Duration>(wall) - lineNow;
}

capture::Frame outward(const RecordedFrame &frame, Duration offset)
{
    capture::Frame result;
    result.time = frame.time + offset;
    result.sender = frame.isRequest ? capture::Sender::Master : capture::Sender::Station;
    result.bytes.assign(frame.bytes.begin(), frame.bytes.end());
    return result;
}

bool writePcap(const QString &path, const QVector<RecordedFrame> &frames, Duration offset,
               QString *error)
{
    std::ostringstream buffer;
    capture::PcapWriter writer(buffer);
    for (const RecordedFrame &frame : frames)
        writer.add(outward(frame, offset));

    return replaceFile(path, QByteArray::fromStdString(buffer.str()), error);
}

bool isPcap(const QByteArray &head)
{
    std::istringstream in(head.left(pcapHeadBytes).toStdString());
    return capture::readPcap(in, nullptr).has_value();
}

std::optional<QVector<RecordedFrame>> readPcap(const QString &path, QString *error)
{
    errno = 0; // the stream itself tells no reason
    std::ifstream in(QFile::encodeName(path).toStdString(), std::ios::binary);
    if (!in) {
        tell(error, path, errno != 0 ? qt_error_string(errno) : QStringLiteral("cannot be read"));
        return std::nullopt;
    }
    if (isPcapng(in)) {
        tell(error, path,
             QStringLiteral("is a pcapng capture, and pcap is read; \"editcap -F pcap %1 "
                            "line.pcap\" converts it")
                 .arg(path));
        return std::nullopt;
    }
    std::string why;
    const auto frames = capture::readPcap(in, &why);
    if (!frames) {
        tell(error, path, QString::fromStdString(why));
        return std::nullopt;
    }
    QVector<RecordedFrame> result;
    for (const capture::Frame &frame : *frames)
        result.append(inward(frame));
    return result;
}

} // namespace dx4::host
