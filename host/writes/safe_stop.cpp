// SPDX-License-Identifier: MIT
// The stop that is sent when nobody watches any more, and followed until it is confirmed.
#include "host/writes/safe_stop.h"

#include "host/base/length.h"
#include "host/exchange/breaker.h"
#include "register_tables.h"
#include "wire/function_code.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace dx4::host {
namespace {

constexpr Duration firstDelay = std::chrono::milliseconds(200);
constexpr Duration longestDelay = std::chrono::seconds(10);
constexpr Duration withheldDelay = std::chrono::milliseconds(20);
/// What a drive needs to carry a broadcast out before it listens again.
constexpr Duration turnaround = std::chrono::milliseconds(100);

constexpr int functionByte = 1;

/// The value that a write carries.
std::optional<quint16> wordIn(const FRAME_PRO &request)
{
    return static_cast<quint16>(request.var.data[0] + 256 * request.var.data[1]);
}

} // namespace

SafeStop::SafeStop(Link &link, const QVector<StopCommand> &commands, Look look)
    : m_link(link)
    , m_commands(commands)
    , m_look(std::move(look))
{
}

void SafeStop::setCommands(QVector<StopCommand> commands)
{
    for (const StopCommand &former : std::as_const(m_commands)) {
        if (m_pending.count(former.station) == 0)
            continue;
        commands.erase(
            std::remove_if(commands.begin(), commands.end(),
                           [&](const StopCommand &next) { return next.station == former.station; }),
            commands.end());
        commands.append(former);
    }
    m_commands = std::move(commands);
}

void SafeStop::begin(Duration now, Duration budget)
{
    m_pending.clear();
    m_unconfirmed.clear();
    for (const StopCommand &command : std::as_const(m_commands)) {
        m_pending[command.station] = Try {};
        m_unconfirmed.insert(command.station);
    }
    m_broadcastIsDue = m_isBroadcast;
    m_passEnd = m_end = now + budget;
    startPass();
}

void SafeStop::resume(Duration now, Duration budget)
{
    m_passEnd = now < m_end ? m_end : now + budget;
    startPass();
}

void SafeStop::cancel()
{
    m_pending.clear();
    m_round.clear();
}

/// Those come first that are most likely to run and to hear it. A drive that is left alone may run
/// as well: its cable may be cut.
int SafeStop::classOf(int station, const StopOutlook &outlook) const
{
    const auto last = m_lastCommand.find(station);
    const bool isTurning = last != m_lastCommand.end() && last->second != wordOf(station);
    const bool isHeard = outlook.lastAnswer && !outlook.isLeftAlone;
    return (isHeard ? 0 : 2) + (isTurning ? 0 : 1);
}

void SafeStop::startPass()
{
    using Key = std::tuple<int, Duration, int>; // class, the latest answer first, station
    std::vector<Key> order;
    for (const auto &[station, next] : m_pending) {
        const StopOutlook outlook = m_look(station);
        const Duration latest = outlook.lastAnswer.value_or(Duration::min() + Duration { 1 });
        order.emplace_back(classOf(station, outlook), -latest, station);
    }
    std::sort(order.begin(), order.end());
    m_round.clear();
    m_roundsDone = 0;
    m_roundDelay = Duration { 0 };
    for (const Key &key : order) {
        const int station = std::get<2>(key);
        m_pending[station] = Try {};
        m_pending[station].rank = lengthOf(m_round);
        m_round.append(station);
    }
}

/// Those that showed life come first. Each round goes the other way than the one before, as a late
/// reply may have hit the request that came behind it.
void SafeStop::startRound()
{
    using Key = std::tuple<bool, int, int>;
    std::vector<Key> order;
    for (const auto &[station, next] : m_pending) {
        const int place = m_roundsDone % 2 == 0 ? next.rank : -next.rank;
        order.emplace_back(!next.showedLife, place, station);
    }
    std::sort(order.begin(), order.end());
    for (const Key &key : order)
        m_round.append(std::get<2>(key));
}

void SafeStop::endRound(Duration now)
{
    ++m_roundsDone;
    m_roundDelay = std::clamp(2 * m_roundDelay, firstDelay, longestDelay);
    const bool isUrgent = std::any_of(m_pending.begin(), m_pending.end(), [](const auto &entry) {
        return entry.second.showedLife || entry.second.isUnproven;
    });
    m_nextRound = isUrgent ? now : now + m_roundDelay;
}

std::optional<quint16> SafeStop::wordOf(int station) const
{
    for (const StopCommand &command : m_commands) {
        if (command.station == station)
            return command.controlWord;
    }
    return std::nullopt;
}

void SafeStop::noteSignOfLife(int station)
{
    const auto waiting = m_pending.find(station);
    if (waiting == m_pending.end() || waiting->second.wasRejected)
        return;
    waiting->second.showedLife = true;
    m_nextRound = Duration { 0 };
    waiting->second.notBefore = Duration { 0 };
    waiting->second.delay = Duration { 0 };
}

/// A broadcast reaches all at once, so that it belongs to the beginning: later it would stop drives
/// that confirmed and were started again.
std::optional<quint16> SafeStop::takeBroadcast()
{
    if (!std::exchange(m_broadcastIsDue, false))
        return std::nullopt;
    const quint16 word = m_commands.constFirst().controlWord;
    const bool isCommon =
        std::all_of(m_commands.cbegin(), m_commands.cend(),
                    [word](const StopCommand &command) { return command.controlWord == word; });
    const bool isFirst = m_round.size() == static_cast<int>(m_unconfirmed.size());
    return isCommon && isFirst ? std::optional<quint16>(word) : std::nullopt;
}

Allowance SafeStop::broadcastAllowance(Duration now) const
{
    const Duration request = m_look(m_round.constFirst()).request;
    const Duration left = std::max(m_passEnd - now - requestTimes() - request, Duration { 0 });
    const Duration share = left / (lengthOf(m_round) + 1);
    return { std::min(turnaround, share), now + request + share, true };
}

Duration SafeStop::requestTimes() const
{
    Duration sum { 0 };
    for (int station : m_round)
        sum += m_look(station).request;
    return sum;
}

bool SafeStop::prepareNext(Duration now)
{
    const bool isRoundDue = m_round.isEmpty() && now >= m_nextRound;
    if (isRoundDue)
        startRound();
    while (!m_round.isEmpty() && !isPending(m_round.constFirst()))
        m_round.removeFirst();
    if (m_round.isEmpty())
        return false;
    const int station = m_round.constFirst();
    if (!isPassing() && m_end - now <= m_look(station).request)
        return false;
    m_prepared = isPassing() ? allowanceInPass(station, now) : allowanceInRound(station, now);
    m_round.removeFirst();
    putAhead(station);
    return true;
}

/// As long as the reply of a living station takes, but no longer than its share of what is left
/// when one request is kept in reserve for every station still to come. A quarter of the share is
/// waited for in any case: a machine under load hears a living station late.
Allowance SafeStop::allowanceInPass(int station, Duration now) const
{
    const StopOutlook outlook = m_look(station);
    const Duration left = std::max(m_passEnd - now - requestTimes(), Duration { 0 });
    const Duration share = left / lengthOf(m_round);
    const Duration wait = std::max(outlook.living, share / 4);
    return { std::min({ wait, outlook.timeout, share }), now + outlook.request + share, true };
}

/// The second try is as quick as the first, as a late reply of another station may have hit that.
/// Patience is for those that showed life, and for the tries after it: they share what is left
/// when every other station has a quick one in reserve. What the adapter does is learnt where one
/// copy came back, which takes a read ahead of the stop; elsewhere the stop itself comes first.
Allowance SafeStop::allowanceInRound(int station, Duration now) const
{
    const StopOutlook outlook = m_look(station);
    Duration left = m_end - now - outlook.request;
    const Duration quick = std::min(outlook.living, left);
    const Try &mine = m_pending.at(station);
    const auto isPatient = [this](const Try &next) { return next.showedLife || m_roundsDone > 1; };
    if (!isPatient(mine))
        return { quick, m_end, !mine.isUnproven };
    int patient = 0;
    for (const auto &[other, next] : m_pending) {
        const StopOutlook others = m_look(other);
        const int exchanges = other == station ? 0 : next.isUnproven ? 2 : 1;
        left -= exchanges * (others.request + others.living);
        patient += isPatient(next) ? 1 : 0;
    }
    return { std::clamp(left / patient, quick, outlook.timeout), m_end, !mine.isUnproven };
}

Allowance SafeStop::takeAllowance(int station)
{
    const Allowance repeat { m_look(station).repeat, std::nullopt, false };
    const Allowance allowance = std::exchange(m_prepared, std::nullopt).value_or(repeat);
    m_wasUrgent = allowance.isUrgent;
    return allowance;
}

/// The driver serves in order and knows no urgent write. What stands before the stop is failed
/// without the line, which is how the driver lets go of it.
void SafeStop::putAhead(int station)
{
    queue(station);
    m_link.failAhead(safeStopTag);
    if (isNext())
        return;
    // A write that cannot be encoded stays at the head for ever, and nothing behind it is served. A
    // polled read may be under way then; it ends with its tries.
    m_link.api().state->writeList.clear();
    queue(station);
    m_link.failAhead(safeStopTag);
}

bool SafeStop::isNext() const
{
    const QList<FRAME_PRO> &frames = m_link.api().state->sendFrames;
    return !frames.isEmpty() && frames.constFirst().var.varKind == safeStopTag;
}

bool SafeStop::isQueued() const
{
    return m_link.hasWrite(safeStopTag);
}

void SafeStop::queue(int station)
{
    const std::optional<quint16> word = wordOf(station);
    if (word && !isQueued())
        m_link.write(station, REG_LIST[TypeCw], 0, { *word }, safeStopTag);
}

void SafeStop::repeat(int station)
{
    m_prepared.reset(); // of a stop that the driver did not hand out
    queue(station);
}

std::optional<int> SafeStop::due(Duration now) const
{
    if (isQueued())
        return std::nullopt;
    for (const auto &[station, next] : m_pending) {
        if (next.notBefore <= now && !m_look(station).isLeftAlone)
            return station;
    }
    return std::nullopt;
}

void SafeStop::afterStep(const Cycle &cycle, Cycle::Step step, const ExchangeReport &report,
                         Duration now)
{
    const FRAME_PRO &request = cycle.request();
    const int station = request.var.station;
    const bool isStopWrite = request.frame[functionByte] == WriteSingleRegister
        && request.var.regType == REG_LIST[TypeCw] && wordIn(request) == wordOf(station);
    if (isStopWrite && step == Cycle::Step::Served) {
        m_pending.erase(station);
        m_unconfirmed.erase(station);
    } else if (request.var.varKind == safeStopTag) {
        noteFailure(station, report, now);
    } else if (isAnswer(report.verdict.cause)) {
        noteSignOfLife(station);
    }
    if (request.var.varKind == safeStopTag && m_round.isEmpty())
        endRound(now);
}

void SafeStop::noteFailure(int station, const ExchangeReport &report, Duration now)
{
    const auto waiting = m_pending.find(station);
    if (waiting == m_pending.end())
        return;
    Try &next = waiting->second;
    next.showedLife = false;
    next.wasRejected = isAnswer(report.verdict.cause);
    // One copy may be the station's or the adapter's. The next try finds that out first.
    next.isUnproven = m_wasUrgent && report.echoStripped && !next.wasRejected;
    if (!next.isUnproven)
        next.delay = std::clamp(2 * next.delay, firstDelay, longestDelay);
    next.notBefore = now + next.delay;
}

void SafeStop::noteWithheld(int station, Duration now)
{
    const auto waiting = m_pending.find(station);
    if (waiting == m_pending.end())
        return;
    waiting->second.showedLife = false;
    waiting->second.isUnproven = false;
    waiting->second.notBefore = now + withheldDelay;
    if (m_round.isEmpty())
        endRound(now);
}

std::optional<Duration> SafeStop::nextTry(Duration now) const
{
    std::optional<Duration> first;
    if (isUrgent(now))
        return m_round.isEmpty() ? m_nextRound : now;
    for (const auto &[station, next] : m_pending) {
        const bool isProbed = m_look(station).isLeftAlone;
        if (!isProbed && (!first || next.notBefore < *first))
            first = next.notBefore;
    }
    return first;
}

QVector<int> SafeStop::unconfirmed() const
{
    QVector<int> stations;
    for (int station : m_unconfirmed)
        stations.append(station);
    return stations;
}

bool SafeStop::isStop(int station, const QVector<quint16> &values) const
{
    return std::any_of(m_commands.begin(), m_commands.end(), [&](const StopCommand &command) {
        return command.station == station && values == QVector<quint16> { command.controlWord };
    });
}

} // namespace dx4::host
