// SPDX-License-Identifier: MIT
// The loop that a host runs: ask for a frame, send it, collect the reply, hand it back.
#include "host/exchange/cycle.h"

namespace dx4::host {
Cycle::Cycle(Link &link, Exchange &exchange)
    : m_link(link)
    , m_exchange(exchange)
{
}

Cycle::Step Cycle::step()
{
    Step done = Step::Idle;
    m_link.handlerErrors().during([&] { done = exchange(); });
    return done;
}

Cycle::Step Cycle::exchange()
{
    if (!m_link.nextFrame(m_request))
        return Step::Idle;
    m_reply = m_exchange.run(m_request);
    // A pulled cable says nothing about the station: the driver is not told, keeps its frame and
    // gives it out again when the line is back.
    if (m_reply.kind == Reply::Kind::LineDown) {
        m_counters.countLineDown();
        return Step::LineDown;
    }
    ReplyResult result = m_link.handReply(m_reply.bytes, &m_errorText);
    // The driver knows no other way to drop a request than to use up its tries; those left are
    // failed here, without the line.
    while (result == ReplyBad && !m_reply.canRetry)
        result = m_link.handReply(QByteArray());
    const Step step = stepOf(result);
    count(step);
    return step;
}

Cycle::Step Cycle::stepOf(ReplyResult result)
{
    switch (result) {
    case ReplyAccepted:
        return Step::Served;
    case RequestGivenUp:
        return Step::GivenUp;
    default:
        return Step::Retry;
    }
}

void Cycle::count(Step step)
{
    if (m_reply.kind == Reply::Kind::NotAsked)
        return m_counters.countNotAsked(m_request);
    ExchangeReport report = m_exchange.report();
    if (m_reply.kind == Reply::Kind::Withheld)
        m_counters.countWithheld(m_request, report, m_reply.turnaround);
    else
        countSent(step, report);
    const bool isAskedAgain = step == Step::GivenUp && m_reply.isRepeated;
    if (step == Step::Retry || isAskedAgain)
        m_counters.countRetry(m_request);
    else if (step == Step::GivenUp)
        m_counters.countGiveUp(m_request);
}

void Cycle::countSent(Step step, ExchangeReport report)
{
    // Without a guard the driver decides, and it believes more than a close look does.
    if (step == Step::Served)
        report.verdict.cause = ReplyCause::Good;
    m_counters.countExchange(m_request, report, m_reply.turnaround);
}

} // namespace dx4::host
