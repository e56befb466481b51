// SPDX-License-Identifier: MIT
// Leaves a station alone that does not answer, so that it does not slow the others down.
#include "host/breaker.h"

#include <algorithm>

namespace dx4::host {
namespace {

constexpr int probeShare = 40; // of the time between two probes
constexpr int patientProbe = 8; // every so many wait for the full response timeout

} // namespace

Breaker::Breaker(const BreakerSettings &settings)
    : m_settings(settings)
{
}

Breaker::Verdict Breaker::judge(int station, Duration now) const
{
    const auto found = m_stations.find(station);
    if (found == m_stations.end() || found->second.delay == Duration { 0 })
        return Verdict::Ask;
    return now >= found->second.probeAt ? Verdict::Probe : Verdict::Leave;
}

Duration Breaker::probeTimeout(int station, Duration responseTimeout) const
{
    const auto found = m_stations.find(station);
    if (found == m_stations.end())
        return responseTimeout;
    const int probes = found->second.givenUp - m_settings.giveUps + 1;
    if (found->second.showedLife || probes % patientProbe == 0)
        return responseTimeout;
    return std::min(responseTimeout, found->second.delay / probeShare);
}

void Breaker::noteAnswer(int station)
{
    m_stations[station] = Station {};
    m_stations[station].answered = true;
}

void Breaker::noteGiveUp(int station, Duration now)
{
    Station &state = m_stations[station];
    state.showedLife = false;
    if (++state.givenUp < m_settings.giveUps)
        return;
    const bool isFirst = state.delay == Duration { 0 };
    state.delay = isFirst ? m_settings.firstDelay : 2 * state.delay;
    state.delay = std::min(state.delay, m_settings.longestDelay);
    state.probeAt = now + state.delay;
}

void Breaker::noteSignOfLife(int station, Duration now)
{
    if (!isLeftAlone(station))
        return;
    m_stations[station].showedLife = true;
    m_stations[station].probeAt = now;
}

bool Breaker::isLeftAlone(int station) const
{
    const auto found = m_stations.find(station);
    return found != m_stations.end() && found->second.delay != Duration { 0 };
}

bool Breaker::hasAnswered(int station) const
{
    const auto found = m_stations.find(station);
    return found != m_stations.end() && found->second.answered;
}

std::optional<Duration> Breaker::nextProbe() const
{
    std::optional<Duration> next;
    for (const auto &[station, state] : m_stations) {
        if (state.delay != Duration { 0 } && (!next || state.probeAt < *next))
            next = state.probeAt;
    }
    return next;
}

BreakerExchange::BreakerExchange(Line &line, GuardedExchange &guard, Breaker &breaker)
    : m_line(line)
    , m_guard(guard)
    , m_breaker(breaker)
{
}

Reply BreakerExchange::run(const FRAME_PRO &request)
{
    const int station = request.var.station;
    const Breaker::Verdict verdict = request.var.varKind == safeStopTag
        ? Breaker::Verdict::Ask
        : m_breaker.judge(station, m_line.now());
    if (verdict == Breaker::Verdict::Leave)
        return { Reply::Kind::NotAsked, {}, false, Duration { 0 } };

    Reply reply = verdict == Breaker::Verdict::Probe ? probe(request) : m_guard.run(request);
    if (m_guard.report().foreignStation != station)
        m_breaker.noteSignOfLife(m_guard.report().foreignStation, m_line.now());
    if (reply.kind != Reply::Kind::LineDown && isAnswer(m_guard.report().verdict.cause))
        m_breaker.noteAnswer(station);
    return reply;
}

Reply BreakerExchange::probe(const FRAME_PRO &request)
{
    const Duration timeout =
        m_breaker.probeTimeout(request.var.station, m_line.settings().responseTimeout);
    Reply reply = m_guard.runWithin(request, { timeout, std::nullopt, false });
    reply.canRetry = reply.canRetry && reply.kind == Reply::Kind::LineDown;
    return reply;
}

bool isAnswer(ReplyCause cause)
{
    switch (cause) {
    case ReplyCause::Good:
    case ReplyCause::WrongFunction:
    case ReplyCause::WrongByteCount:
    case ReplyCause::WrongEcho:
    case ReplyCause::Exception:
        return true;
    case ReplyCause::Silence:
    case ReplyCause::Truncated:
    case ReplyCause::BadCrc:
    case ReplyCause::ForeignStation:
        return false;
    }
    return false;
}

} // namespace dx4::host
