// SPDX-License-Identifier: MIT
// A line whose frames are shown as they pass.
#include "cli/line/tracing_line.h"

#include "cli/console/output.h"
#include "cli/registers/frame_text.h"
#include "cli/registers/frame_words.h"
#include "host/base/length.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

namespace dx4::cli {
namespace {

constexpr int shortestFrame = 5;

/// A reply that pauses so long inside is none; adapters hand bytes over in lumps, 16 ms apart.
constexpr host::Duration longestPause = std::chrono::milliseconds(50);

} // namespace

QString frameLine(const QByteArray &frame, bool isRequest, int firstRegister)
{
    return filled("%1 %2  %3", isRequest ? ">" : "<", bytesText(frame),
                  frameWords(frame, isRequest, firstRegister));
}

TracingLine::TracingLine(host::Line &line, Writer write)
    : m_line(line)
    , m_write(std::move(write))
{
}

TracingLine::~TracingLine()
{
    tellEnd();
}

void TracingLine::close()
{
    tellEnd();
    m_line.close();
}

bool TracingLine::send(const QByteArray &bytes)
{
    tellEnd();
    const host::Duration start = m_line.now();
    const bool sent = m_line.send(bytes);
    const FrameText text = explainFrame(bytes);
    m_firstRegister = text.firstRegister;
    tell(frameLine(bytes, true) + (sent ? QString() : QStringLiteral(", not sent")), start);
    // A broadcast has no reply.
    if (sent && text.station != 0)
        m_sentAt = start + settings().wireTime(host::lengthOf(bytes));
    return sent;
}

QByteArray TracingLine::receive(int count, host::Duration deadline)
{
    QByteArray bytes = m_line.receive(count, deadline);
    heard(bytes);
    return bytes;
}

int TracingLine::discardInput()
{
    const int dropped = m_line.discardInput();
    if (dropped == 0)
        return dropped;
    tellHeard();
    tell(filled("< %1 bytes that belong to no reply", dropped), m_line.now());
    return dropped;
}

bool TracingLine::awaitSilence(host::Duration gap, host::Duration deadline)
{
    tellHeard();
    return m_line.awaitSilence(gap, deadline);
}

void TracingLine::heard(const QByteArray &bytes)
{
    const host::Duration now = m_line.now();
    if (bytes.isEmpty()) {
        if (now - m_heardAt > longestPause)
            tellHeard();
        return;
    }
    m_heard += bytes;
    m_heardAt = now;
    if (m_heard.size() >= shortestFrame && explainFrame(m_heard).crcIsRight)
        tellHeard();
}

void TracingLine::tellHeard()
{
    if (m_heard.isEmpty())
        return;
    const QString text = frameLine(m_heard, false, m_firstRegister) + turnaroundText();
    m_heard.clear();
    m_sentAt.reset();
    tell(text, m_heardAt);
}

/// Nothing more can come for the last request.
void TracingLine::tellEnd()
{
    tellHeard();
    if (std::exchange(m_sentAt, std::nullopt))
        tell(QStringLiteral("< nothing"), m_line.now());
}

QString TracingLine::turnaroundText() const
{
    if (!m_sentAt)
        return QString();
    const host::Duration wire = settings().wireTime(host::lengthOf(m_heard));
    const host::Duration turnaround = std::max(m_heardAt - wire - *m_sentAt, host::Duration { 0 });
    return QStringLiteral(", turnaround %1 ms")
        .arg(std::chrono::duration<double, std::milli>(turnaround).count(), 0, 'f', 1);
}

void TracingLine::tell(const QString &text, host::Duration at)
{
    const auto ago = (m_line.now() - at) / std::chrono::milliseconds(1);
    const QTime time = QDateTime::currentDateTime().addMSecs(-ago).time();
    m_write(time.toString(QStringLiteral("HH:mm:ss.zzz ")) + text);
}

} // namespace dx4::cli
