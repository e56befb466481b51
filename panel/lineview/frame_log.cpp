// SPDX-License-Identifier: MIT
// The frames of a line in words, each reply held against its request.
#include "panel/lineview/frame_log.h"

#include "cli/registers/frame_text.h"
#include "cli/registers/frame_words.h"
#include "host/base/length.h"
#include "host/frames/modbus_frame.h"
#include "host/frames/verdict_text.h"

#include <QDateTime>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int countBytes = 4; // place of the count in a read request
constexpr int writeEchoLength = 8;

/// The request as the check of replies wants it.
FRAME_PRO requestOf(const QByteArray &bytes)
{
    FRAME_PRO request;
    const int most = static_cast<int>(sizeof request.frame);
    request.sendLength = std::min(host::lengthOf(bytes), most);
    std::copy_n(bytes.begin(), request.sendLength, request.frame);
    request.replyLength = writeEchoLength;
    const bool isRead = bytes.size() > countBytes + 1
        && host::byteAt(bytes, host::functionByte) == ReadHoldingRegisters;
    if (isRead) {
        const int count =
            host::byteAt(bytes, countBytes) * 256 + host::byteAt(bytes, countBytes + 1);
        request.replyDataLength = 2 * count;
        request.replyLength = request.replyDataLength + 5;
    }
    return request;
}

/// Without the copy of the request that some adapters give back in front of the reply.
QByteArray withoutEcho(const QByteArray &reply, const QByteArray &request)
{
    const bool hasEcho = reply.size() > request.size() && reply.startsWith(request);
    return hasEcho ? reply.mid(host::lengthOf(request)) : reply;
}

/// Exceptions and wrong CRCs are in the words of the frame already.
bool isToldByFrame(host::ReplyCause cause)
{
    return cause == host::ReplyCause::Good || cause == host::ReplyCause::BadCrc
        || cause == host::ReplyCause::Exception;
}

void keep(std::deque<FrameLine> &lines, const FrameLine &line)
{
    lines.push_back(line);
    if (lines.size() > FrameLog::mostLines)
        lines.pop_front();
}

} // namespace

FrameLog::FrameLog(const host::LineSettings &settings)
    : m_settings(settings)
{
}

void FrameLog::take(const host::TappedFrames &taken)
{
    const int passedOver = std::max(0, host::lengthOf(taken.frames) - mostAtOnce);
    const quint64 missed = taken.missed + static_cast<quint64>(passedOver);
    if (missed > 0)
        m_request.reset(); // its reply may be among those that are missing
    m_missed += missed;
    for (int i = passedOver; i < host::lengthOf(taken.frames); ++i) {
        const host::RecordedFrame &frame = taken.frames.at(i);
        if (frame.isRequest)
            takeRequest(frame, taken.wallClockOffset);
        else
            takeReply(frame, taken.wallClockOffset);
    }
}

void FrameLog::takeRequest(const host::RecordedFrame &frame, host::Duration offset)
{
    endRequest(frame.time + offset);
    Request request;
    request.time = frame.time;
    request.firstRegister = cli::explainFrame(frame.bytes).firstRegister;
    request.line.time = frame.time + offset;
    request.line.station = frame.bytes.isEmpty() ? 0 : host::byteAt(frame.bytes, 0);
    request.line.words = cli::frameWords(frame.bytes, true);
    request.line.bytes = frame.bytes;
    keep(m_all, request.line);
    m_request = request;
}

/// Nothing more can come for the last request.
void FrameLog::endRequest(host::Duration time)
{
    const bool isBroadcast = m_request && m_request->line.station == 0;
    if (!m_request || m_request->isAnswered || isBroadcast)
        return;
    FrameLine silence;
    silence.time = time;
    silence.station = m_request->line.station;
    silence.isRequest = false;
    silence.isBad = true;
    silence.words = tr("station %1, %2")
                        .arg(silence.station)
                        .arg(host::verdictText({ host::ReplyCause::Silence, 0 }));
    add(silence);
}

void FrameLog::takeReply(const host::RecordedFrame &frame, host::Duration offset)
{
    FrameLine line = judged(frame);
    line.time = frame.time + offset;
    line.isRequest = false;
    line.bytes = frame.bytes;
    add(line);
    if (m_request)
        m_request->isAnswered = true;
}

FrameLine FrameLog::judged(const host::RecordedFrame &frame) const
{
    FrameLine line;
    line.station = m_request ? m_request->line.station : host::byteAt(frame.bytes, 0);
    if (!m_request || m_request->isAnswered) {
        line.words = tr("%1, belongs to no request").arg(cli::frameWords(frame.bytes, false));
        line.isBad = m_request.has_value(); // before the first request nobody knows
        return line;
    }
    const QByteArray reply = withoutEcho(frame.bytes, m_request->line.bytes);
    const host::ReplyVerdict verdict = host::checkReply(requestOf(m_request->line.bytes), reply);
    line.words = cli::frameWords(reply, false, m_request->firstRegister);
    line.isBad = verdict.cause != host::ReplyCause::Good;
    if (!isToldByFrame(verdict.cause))
        line.words += QStringLiteral(", ") + host::verdictText(verdict);
    const int onTheWire = host::lengthOf(frame.bytes) + host::lengthOf(m_request->line.bytes);
    line.turnaround =
        std::max(frame.time - m_request->time - m_settings.wireTime(onTheWire), host::Duration(0));
    return line;
}

/// A bad one is kept with its request.
void FrameLog::add(const FrameLine &line)
{
    keep(m_all, line);
    if (!line.isBad)
        return;
    if (m_request && !m_request->isAnswered)
        keep(m_bad, m_request->line);
    keep(m_bad, line);
}

QVector<FrameLine> FrameLog::lines(const FrameFilter &filter) const
{
    const std::deque<FrameLine> &from = filter.onlyBad ? m_bad : m_all;
    QVector<FrameLine> wanted;
    for (const FrameLine &line : from) {
        if (filter.station == 0 || line.station == filter.station)
            wanted.append(line);
    }
    return wanted;
}

QString timeOfDay(host::Duration time)
{
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    return QDateTime::fromMSecsSinceEpoch(ms).time().toString(QStringLiteral("HH:mm:ss.zzz"));
}

} // namespace dx4::panel
