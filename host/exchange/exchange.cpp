// SPDX-License-Identifier: MIT
// One request and what came back: the step between the cycle and the line.
#include "host/exchange/exchange.h"

#include "host/base/length.h"

#include <algorithm>

namespace dx4::host {
namespace {

Reply::Kind judge(const Line &line, int received, int expected)
{
    if (received >= expected)
        return Reply::Kind::Complete;
    if (!line.isOpen())
        return Reply::Kind::LineDown;
    return received > 0 ? Reply::Kind::Incomplete : Reply::Kind::Silence;
}

} // namespace

LineExchange::LineExchange(Line &line)
    : m_line(line)
{
}

Reply LineExchange::run(const FRAME_PRO &request)
{
    const LineSettings &settings = m_line.settings();
    const int expected = std::max(request.replyLength, 0);

    Reply reply;
    // A station that chatters without end must not stop the rotation: past the response timeout
    // the request goes out all the same.
    m_line.awaitSilence(settings.silentGap(), m_line.now() + settings.responseTimeout);
    m_line.discardInput();

    const QByteArray frame(reinterpret_cast<const char *>(request.frame), request.sendLength);
    const Duration start = m_line.now();
    const bool sent = m_line.send(frame);
    const Duration deadline = start + settings.wireTime(lengthOf(frame)) + settings.responseTimeout
        + settings.wireTime(expected);
    reply.bytes = m_line.receive(expected, deadline); // none where the line is closed
    reply.kind = sent ? judge(m_line, lengthOf(reply.bytes), expected) : Reply::Kind::LineDown;
    reply.turnaround = m_line.now() - start;
    const Duration wire = settings.wireTime(lengthOf(frame) + lengthOf(reply.bytes));
    m_report.verdict = checkReply(request, reply.bytes);
    m_report.bytesHeard = lengthOf(reply.bytes);
    m_report.answerDelay = std::max(reply.turnaround - wire, Duration { 0 });
    return reply;
}

} // namespace dx4::host
