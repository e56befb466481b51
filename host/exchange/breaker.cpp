// SPDX-License-Identifier: MIT
// Leaves a station alone that does not answer, so that it does not slow the others down.
#include "host/exchange/breaker.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

constexpr int probeShare = 40; // of the time between two probes
constexpr int patientProbe = 8; // every so many wait for the full response timeout
constexpr int firstPatientProbe = 3; // of a station that was never heard
constexpr int restPerProbe = 3; // times as long as a failed probe held the line
constexpr int mostSilentTries = 6; // of a station that answered before

constexpr Duration strangersTimeout = std::chrono::milliseconds(100);
constexpr Duration strangersTogether = std::chrono::seconds(1); // all that are polled, at first
// Adapters hand bytes over up to 16 ms late, and the next answer may be slower than all before.
constexpr Duration margin = std::chrono::milliseconds(20);
constexpr Duration postponement = std::chrono::milliseconds(20);
constexpr Duration doubtMargin = std::chrono::milliseconds(30);

} // namespace

Breaker::Breaker(const BreakerSettings &settings)
    : m_settings(settings)
{
}

const Breaker::Station *Breaker::find(int station) const
{
    const auto found = m_stations.find(station);
    return found == m_stations.end() ? nullptr : &found->second;
}

void Breaker::noteAnswer(int station, Duration now)
{
    Station &state = m_stations[station];
    const bool isAsked = state.isAsked;
    state = Station {};
    state.isAsked = isAsked;
    state.hasAnswered = true;
    state.isInDoubt = false;
    state.answeredAt = now;
}

void Breaker::noteSilence(int station)
{
    Station &state = m_stations[station];
    ++state.silent;
    state.isInDoubt = true;
    state.showedLife = false;
}

void Breaker::noteGiveUp(int station, Duration now)
{
    Station &state = m_stations[station];
    state.showedLife = false;
    state.isInDoubt = true;
    ++state.givenUp;
    const bool isFirst = state.delay == Duration { 0 };
    if (isFirst && state.givenUp < (state.hasAnswered ? m_settings.giveUps : 1))
        return;
    state.probes += isFirst ? 0 : 1;
    state.delay = isFirst ? m_settings.firstDelay : 2 * state.delay;
    state.delay = std::min(state.delay, m_settings.longestDelay);
    state.probeAt = now + state.delay;
}

void Breaker::noteProbeCost(Duration held, Duration now)
{
    if (!living().empty())
        m_restUntil = now + restPerProbe * held;
}

void Breaker::noteSignOfLife(int station, Duration now)
{
    const auto found = m_stations.find(station);
    if (found == m_stations.end())
        return;
    found->second.showedLife = true;
    found->second.isInDoubt = false;
    found->second.silent = 0;
    found->second.probeAt = std::min(found->second.probeAt, now);
}

bool Breaker::isInDoubt(int station) const
{
    const Station *state = find(station);
    return !state || state->isInDoubt;
}

bool Breaker::isLeftAlone(int station) const
{
    const Station *state = find(station);
    return state && state->delay != Duration { 0 };
}

bool Breaker::hasAnswered(int station) const
{
    const Station *state = find(station);
    return state && state->hasAnswered;
}

bool Breaker::mayRetry(int station) const
{
    const Station *state = find(station);
    return state && (state->hasAnswered || state->showedLife) && state->silent < mostSilentTries;
}

std::optional<Duration> Breaker::lastAnswer(int station) const
{
    const Station *state = find(station);
    return state && state->hasAnswered ? std::optional<Duration>(state->answeredAt) : std::nullopt;
}

std::vector<int> Breaker::living() const
{
    std::vector<int> stations;
    for (const auto &[station, state] : m_stations) {
        if (state.hasAnswered && state.delay == Duration { 0 })
            stations.push_back(station);
    }
    return stations;
}

bool Breaker::isProbed(int station, const Station &state) const
{
    const bool isWanted = state.isAsked || m_polled.count(station) > 0;
    return isWanted && state.delay != Duration { 0 };
}

std::optional<int> Breaker::dueProbe(Duration now) const
{
    std::optional<int> due;
    for (const auto &[station, state] : m_stations) {
        const bool isDue = isProbed(station, state) && std::max(state.probeAt, m_restUntil) <= now;
        if (isDue && (!due || state.probeAt < find(*due)->probeAt))
            due = station;
    }
    return due;
}

std::optional<Duration> Breaker::nextProbe() const
{
    std::optional<Duration> next;
    for (const auto &[station, state] : m_stations) {
        const Duration probeAt = std::max(state.probeAt, m_restUntil);
        if (isProbed(station, state) && (!next || probeAt < *next))
            next = probeAt;
    }
    return next;
}

Duration Breaker::probeTimeout(int station, Duration responseTimeout, Duration living) const
{
    const Station *state = find(station);
    if (!state || state->delay == Duration { 0 } || state->showedLife)
        return responseTimeout;
    const int probe = state->probes + 1;
    if (probe % patientProbe == 0 || (probe == firstPatientProbe && !state->hasAnswered))
        return responseTimeout;
    // The probe after this one comes later than the longest delay from now, counted from the
    // station's last chance to be found by a long one.
    const bool isLastChance = 4 * state->delay > m_settings.longestDelay;
    const Duration share = (isLastChance ? m_settings.longestDelay : state->delay) / probeShare;
    return std::min(responseTimeout, std::max(share, living));
}

BreakerExchange::BreakerExchange(Line &line, GuardedExchange &guard, Breaker &breaker)
    : m_line(line)
    , m_guard(guard)
    , m_breaker(breaker)
    , m_purposeOf([](const FRAME_PRO &) { return Purpose::Asked; })
{
}

void BreakerExchange::setPurposes(PurposeOf purposeOf, AllowanceOf allowanceOf)
{
    m_purposeOf = std::move(purposeOf);
    m_allowanceOf = std::move(allowanceOf);
}

Reply BreakerExchange::run(const FRAME_PRO &request)
{
    const int station = request.var.station;
    const Purpose purpose = m_purposeOf(request);
    if (purpose == Purpose::Bounded) {
        Reply reply = askOnce(request, m_allowanceOf(station));
        reply.isRepeated = true;
        return reply;
    }
    if (purpose != Purpose::Polled)
        m_breaker.noteAsked(station);
    const bool isLeftAlone = m_breaker.isLeftAlone(station);
    if (isLeftAlone && purpose == Purpose::Urgent)
        return askOnce(request, { doubtTimeout(station), std::nullopt, false });
    if (isLeftAlone)
        return { Reply::Kind::NotAsked, {}, false, Duration { 0 } };
    const bool isShared = m_breaker.polledStations() > 1;
    if (purpose == Purpose::Polled && isShared)
        return poll(request);
    Reply reply = m_guard.run(request);
    noteReport(station, reply);
    return reply;
}

Reply BreakerExchange::poll(const FRAME_PRO &request)
{
    const int station = request.var.station;
    const Duration timeout =
        m_breaker.isInDoubt(station) ? doubtTimeout(station) : m_guard.timeoutOf(station);
    Reply reply = m_guard.runWithin(request, { timeout, std::nullopt, false });
    noteReport(station, reply);
    const bool isSilent = reply.kind == Reply::Kind::Silence;
    reply.canRetry = reply.canRetry && (!isSilent || m_breaker.mayRetry(station));
    return reply;
}

/// One try: what is left of the driver's tries fails without the line. Where the station is left
/// alone it is a probe, and failed if the station still is so afterwards.
Reply BreakerExchange::askOnce(const FRAME_PRO &request, const Allowance &allowance)
{
    const int station = request.var.station;
    Reply reply = m_guard.runWithin(request, allowance);
    noteReport(station, reply);
    if (m_breaker.isLeftAlone(station))
        m_breaker.noteProbeCost(reply.turnaround, m_line.now());
    reply.canRetry = reply.canRetry && reply.kind == Reply::Kind::LineDown;
    return reply;
}

Reply BreakerExchange::probe(int station)
{
    Reply reply = m_guard.probe(station, { probeTimeout(station), std::nullopt, false });
    noteReport(station, reply);
    const Duration now = m_line.now();
    if (!wasAsked(reply)) {
        m_breaker.postponeProbe(station, now + postponement);
    } else if (!isAnswer(m_guard.report().verdict.cause)) {
        m_breaker.noteGiveUp(station, now);
        m_breaker.noteProbeCost(reply.turnaround, now);
    }
    return reply;
}

void BreakerExchange::listen()
{
    m_guard.listen();
    noteHeard();
}

void BreakerExchange::noteHeard()
{
    for (int station : m_guard.report().heardStations)
        m_breaker.noteSignOfLife(station, m_line.now());
}

Duration BreakerExchange::probeTimeout(int station) const
{
    return m_breaker.probeTimeout(station, m_guard.timeoutOf(station), livingTimeout(station));
}

void BreakerExchange::noteReport(int station, const Reply &reply)
{
    const ExchangeReport &report = m_guard.report();
    if (wasAsked(reply) && isAnswer(report.verdict.cause))
        m_breaker.noteAnswer(station, m_line.now());
    else if (wasAsked(reply))
        m_breaker.noteSilence(station);
    noteHeard();
}

Duration BreakerExchange::livingTimeout(int station) const
{
    const std::optional<Duration> known = m_guard.answerTime(station);
    const Duration living = known ? *known * 3 / 2 + margin : strangersTimeout;
    return std::min(living, m_guard.timeoutOf(station));
}

Duration BreakerExchange::doubtTimeout(int station) const
{
    const Duration longest = m_guard.timeoutOf(station);
    if (const std::optional<Duration> known = m_guard.answerTime(station))
        return std::min(2 * *known + doubtMargin, longest);
    Duration timeout =
        std::max(strangersTimeout, strangersTogether / std::max(m_breaker.polledStations(), 1));
    for (int other : m_breaker.living())
        timeout = std::max(timeout, 2 * m_guard.answerTime(other).value_or(Duration { 0 }));
    return std::min(timeout, longest);
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
        break;
    }
    return false;
}

bool wasAsked(const Reply &reply)
{
    switch (reply.kind) {
    case Reply::Kind::Complete:
    case Reply::Kind::Incomplete:
    case Reply::Kind::Silence:
        return true;
    case Reply::Kind::LineDown:
    case Reply::Kind::NotAsked:
    case Reply::Kind::Withheld:
        break;
    }
    return false;
}

} // namespace dx4::host
