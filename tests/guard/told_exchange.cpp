// SPDX-License-Identifier: MIT
// An exchange that knows how slow each station is, and takes whatever has the right length.
#include "told_exchange.h"

using namespace dx4::host;

Reply ToldExchange::run(const FRAME_PRO &request)
{
    const LineSettings &settings = m_plant.settings();
    m_plant.awaitSilence(settings.silentGap(), m_plant.now() + settings.responseTimeout);
    m_plant.send(QByteArray(reinterpret_cast<const char *>(request.frame), request.sendLength));
    const int expected = request.replyLength + (m_plant.echoes() ? request.sendLength : 0);
    const Duration deadline =
        m_plant.now() + m_plant.slowestOf(request.frame[0]) + settings.wireTime(expected);
    const QByteArray bytes = m_plant.receive(expected, deadline).right(request.replyLength);
    m_report = {};
    m_report.verdict = checkReply(request, bytes);
    const bool isGood = m_report.verdict.cause == ReplyCause::Good;
    return { isGood ? Reply::Kind::Complete : Reply::Kind::Silence, bytes, true, Duration { 0 } };
}
