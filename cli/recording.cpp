// SPDX-License-Identifier: MIT
// A recording that grows while the line is polled.
#include "cli/recording.h"

#include "host/pcap_file.h"

namespace dx4::cli {

Recording::Recording(const QString &path)
    : m_file(path)
{
}

bool Recording::canBegin()
{
    const bool existed = m_file.exists();
    if (!m_file.open(QIODevice::ReadWrite))
        return fail();
    m_file.close();
    if (!existed)
        m_file.remove();
    return true;
}

bool Recording::begin(host::Duration lineNow)
{
    // Unbuffered: what the program holds back is lost with it.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return fail();
    m_offset = host::wallClockOffset(lineNow);
    m_writer = std::make_unique<capture::PcapWriter>(m_waiting); // leaves the file's head
    return write();
}

bool Recording::add(const QVector<host::RecordedFrame> &frames)
{
    for (const host::RecordedFrame &frame : frames) {
        if (failed())
            return false;
        m_writer->add(host::outward(frame, m_offset));
        if (write())
            ++m_frames;
    }
    return !failed();
}

bool Recording::write()
{
    const QByteArray bytes = QByteArray::fromStdString(m_waiting.str());
    m_waiting.str({});
    for (qint64 done = 0; done < bytes.size();) {
        // A file that is nearly full takes a part, and gives the reason with the rest.
        const qint64 count = m_file.write(bytes.constData() + done, bytes.size() - done);
        if (count <= 0) {
            fail();
            if (!m_file.isSequential())
                m_file.resize(m_size); // a part of a frame would make the file unreadable
            return false;
        }
        done += count;
    }
    m_size += bytes.size();
    return true;
}

bool Recording::fail()
{
    m_error = QStringLiteral("%1: %2").arg(m_file.fileName(), m_file.errorString());
    return false;
}

} // namespace dx4::cli
