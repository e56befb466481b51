// SPDX-License-Identifier: MIT
// The loop that a host runs: ask for a frame, send it, collect the reply, hand it back.
#include "host/cycle.h"

namespace dx4::host {
namespace {

constexpr int functionByte = 1;
constexpr unsigned char readFunction = 3;

bool isRead(const FRAME_PRO &request)
{
    return request.frame[functionByte] == readFunction;
}

} // namespace

Cycle::Cycle(Link &link, Exchange &exchange)
    : m_link(link)
    , m_exchange(exchange)
{
}

Cycle::Step Cycle::step()
{
    if (!m_link.nextFrame(m_request))
        return Step::Idle;
    m_reply = m_exchange.run(m_request);
    if (m_reply.kind != Reply::Kind::NotAsked) {
        ++m_counters.requests;
        m_counters.bytesSent += static_cast<quint64>(m_request.sendLength);
    }
    m_counters.bytesReceived += static_cast<quint64>(m_reply.bytes.size());

    // A pulled cable says nothing about the station: the driver is not told, keeps its frame and
    // gives it out again when the line is back.
    if (m_reply.kind == Reply::Kind::LineDown) {
        ++m_counters.lineDowns;
        return Step::LineDown;
    }
    ReplyResult result = m_link.handReply(m_reply.bytes, &m_errorText);
    // The driver knows no other way to drop a request than to use up its tries; those left are
    // failed here, without the line.
    while (result == ReplyBad && !m_reply.canRetry) {
        m_link.nextFrame(m_request);
        result = m_link.handReply(QByteArray());
    }
    return settle(result);
}

Cycle::Step Cycle::settle(ReplyResult result)
{
    if (result == ReplyAccepted) {
        ++(isRead(m_request) ? m_counters.readsServed : m_counters.writesServed);
        return Step::Served;
    }
    if (m_reply.kind != Reply::Kind::NotAsked)
        ++(m_reply.kind == Reply::Kind::Silence ? m_counters.silences : m_counters.badReplies);
    if (result == RequestGivenUp) {
        ++m_counters.givenUp;
        return Step::GivenUp;
    }
    ++m_counters.retries;
    return Step::Retry;
}

} // namespace dx4::host
