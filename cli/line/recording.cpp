// SPDX-License-Identifier: MIT
// A recording that grows while the line is polled.
#include "cli/line/recording.h"

#include "host/base/whole_file.h"
#include "host/recording/pcap_file.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace dx4::cli {
namespace {

/// Whether there is nothing in a file that a recording must not take the place of.
bool mayBeReplaced(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return true;
    const bool isOpen = file.open(QIODevice::ReadOnly);
    return isOpen && (file.size() == 0 || host::isPcap(file.read(host::pcapHeadBytes)));
}

} // namespace

Recording::Recording(QString path)
    : m_path(std::move(path))
{
}

bool Recording::canBegin(bool force)
{
    QString error;
    if (!host::canReplaceFile(m_path, &error)) // first, as it opens no pipe
        return fail(error);
    return force || mayBeReplaced(m_path)
        || fail(m_path
                + QStringLiteral(": holds something else than a recording; name another file, or "
                                 "replace it with --force"));
}

bool Recording::begin(host::Duration lineNow)
{
    m_offset = host::wallClockOffset(lineNow);
    m_writer = std::make_unique<capture::PcapWriter>(m_waiting); // leaves the file's head
    const QByteArray head = QByteArray::fromStdString(m_waiting.str());
    m_waiting.str({});
    host::FileReplacement file(m_path);
    if (!file.open() || !file.write(head) || !file.putInPlace())
        return fail(file.error());
    m_size = head.size();
    // Unbuffered: what the program holds back is lost with it.
    return m_file.open(file.takeDescriptor(), QIODevice::WriteOnly | QIODevice::Unbuffered,
                       QFileDevice::AutoCloseHandle)
        || fail(filled("%1: %2", m_path, m_file.errorString()));
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

bool Recording::end()
{
    if (failed() || !m_file.isOpen())
        return !failed();
    struct stat status { };
    if (fsync(m_file.handle()) != 0 || fstat(m_file.handle(), &status) != 0)
        return fail(filled("%1: %2", m_path, qt_error_string(errno)));
    return status.st_nlink > 0
        || fail(m_path
                + QStringLiteral(
                    ": was removed or replaced as it was written; its frames are lost"));
}

bool Recording::write()
{
    const QByteArray bytes = QByteArray::fromStdString(m_waiting.str());
    m_waiting.str({});
    for (qint64 done = 0; done < bytes.size();) {
        // A file that is nearly full takes a part, and gives the reason with the rest.
        const qint64 count = m_file.write(bytes.constData() + done, bytes.size() - done);
        if (count <= 0) {
            fail(filled("%1: %2", m_path, m_file.errorString()));
            m_file.resize(m_size); // a part of a frame would make the file unreadable
            return false;
        }
        done += count;
    }
    m_size += bytes.size();
    return true;
}

bool Recording::fail(const QString &error)
{
    m_error = error;
    return false;
}

} // namespace dx4::cli
