// SPDX-License-Identifier: MIT
// An exchange that lets only the request's own reply through to the driver.
#include "host/exchange/guarded_exchange.h"

#include "host/exchange/guard_requests.h"
#include "host/frames/modbus_frame.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace dx4::host {
namespace {

constexpr int mostHeard = 1024; // bytes; a line that babbles on is no reply

/// For one request: each that is answered settles something, and three settle everything.
constexpr int mostClearingReads = 8;

/// Of an echo that was damaged more than this comes through; less in front of a reply is noise.
constexpr int leastOfEcho = 4;

/// USB adapters hand bytes over in bursts up to 16 ms apart; a shorter pause ends no frame.
constexpr Duration longestPause = std::chrono::milliseconds(20);

/// A hiccup of a drive, as when it stores a parameter, may last longer than many short timeouts.
constexpr Duration leastLongestAnswer = std::chrono::seconds(3);

/// Whether the bytes are one frame of any station, whatever it says.
bool isFrame(const QByteArray &bytes)
{
    return bytes.size() >= exceptionLength && crcIsRight(bytes);
}

bool beginsLikeReply(const FRAME_PRO &request, const QByteArray &bytes)
{
    return bytes.size() > functionByte && byteAt(bytes, stationByte) == request.frame[stationByte]
        && byteAt(bytes, functionByte) == request.frame[functionByte];
}

Reply::Kind kindOf(ReplyCause cause)
{
    switch (cause) {
    case ReplyCause::Good:
        return Reply::Kind::Complete;
    case ReplyCause::Silence:
        return Reply::Kind::Silence;
    case ReplyCause::Truncated:
    case ReplyCause::BadCrc:
    case ReplyCause::ForeignStation:
    case ReplyCause::WrongFunction:
    case ReplyCause::WrongByteCount:
    case ReplyCause::WrongEcho:
    case ReplyCause::Exception:
        break;
    }
    return Reply::Kind::Incomplete;
}

Duration noLaterThan(const std::optional<Duration> &bound, Duration moment)
{
    return bound ? std::min(moment, *bound) : moment;
}

} // namespace

GuardedExchange::GuardedExchange(Line &line)
    : m_line(line)
    , m_finder([this](int station, int function) { return m_owed.lengths(station, function); })
    , m_echo(line.settings().echo)
    , m_answerTimes(line.settings().responseTimeout)
{
}

Reply GuardedExchange::run(const FRAME_PRO &request)
{
    return runWithin(request, { timeoutOf(request.frame[stationByte]), std::nullopt, false });
}

Reply GuardedExchange::runWithin(const FRAME_PRO &request, const Allowance &allowance)
{
    beginReport();
    if (isDegenerate(request))
        return { Reply::Kind::NotAsked, {}, false, Duration { 0 } };
    const Duration start = m_line.now();
    const bool isCopied = repliesLikeEcho(request);
    if (isCopied && !allowance.isUrgent)
        learnEcho(request, allowance);
    const bool mayGo = allowance.isUrgent || clear(request, allowance);
    if (!mayGo || isTooLate(request, allowance)) {
        m_report.verdict = {};
        if (!m_line.isOpen())
            return lineDown(start);
        return { Reply::Kind::Withheld, {}, true, m_line.now() - start };
    }
    Reply reply = exchange(request, allowance);
    if (isCopied && reply.kind == Reply::Kind::Silence && m_report.echoStripped)
        m_echo.noteLoneCopy();
    return reply;
}

/// Whether reads of the guard's own have taken the time that the request needs.
bool GuardedExchange::isTooLate(const FRAME_PRO &request, const Allowance &allowance) const
{
    const bool hasAsked = m_report.echoProbes + m_report.clearingReads > 0;
    const Duration needed =
        gapBefore(request.frame[stationByte]) + m_line.settings().wireTime(request.sendLength);
    return hasAsked && allowance.until && m_line.now() + needed > *allowance.until;
}

Reply GuardedExchange::probe(int station, const Allowance &allowance)
{
    return runWithin(statusWordRead(station), allowance);
}

Reply GuardedExchange::broadcast(quint16 controlWord, const Allowance &allowance)
{
    beginReport();
    const FRAME_PRO request = controlWordBroadcast(controlWord);
    m_owed.expire(0, m_line.now(), Duration { 0 });
    const Duration start = m_line.now();
    awaitGap(request, allowance);
    if (!send(request))
        return lineDown(start);
    m_owed.noteGivenUp();
    const Duration end = noLaterThan(allowance.until, *m_lastActivity + allowance.timeout);
    while (m_line.isOpen() && m_line.now() < end)
        hear(m_line.receive(mostHeard, end));
    return { Reply::Kind::Complete, {}, false, m_line.now() - start };
}

void GuardedExchange::listen()
{
    m_report = {};
    hear(m_line.receive(mostHeard, m_line.now()));
    m_lateBefore += m_report.lateReplies; // counted with the exchange that follows
}

void GuardedExchange::beginReport()
{
    m_report = {};
    m_report.lateReplies = std::exchange(m_lateBefore, 0);
}

void GuardedExchange::forgetLine()
{
    m_echo = AdapterEcho(m_line.settings().echo);
    m_finder.takeRest();
    m_lastActivity.reset();
}

Reply GuardedExchange::lineDown(Duration start)
{
    forgetLine();
    return { Reply::Kind::LineDown, {}, true, m_line.now() - start };
}

/// Asks the station for something else until the adapter is known, or the station is silent.
void GuardedExchange::learnEcho(const FRAME_PRO &request, const Allowance &allowance)
{
    while (m_echo.state() == AdapterEcho::State::Unknown
           && m_report.echoProbes < m_echo.cleanToBelieve()) {
        const auto read = clearingRead(request, true);
        if (!read)
            break;
        const Reply reply = exchange(*read, allowance);
        if (reply.kind == Reply::Kind::Withheld)
            break;
        ++m_report.echoProbes;
        const bool isAnswered =
            reply.kind == Reply::Kind::Complete || m_report.verdict.cause == ReplyCause::Exception;
        if (!isAnswered)
            break;
    }
}

/// Brings the station to tell that nothing it owes can be taken for the reply to this request.
///
/// @return false when it did not; the request must not go out
bool GuardedExchange::clear(const FRAME_PRO &request, const Allowance &allowance)
{
    const int station = request.frame[stationByte];
    m_owed.expire(station, m_line.now(), longestAnswer());
    bool isThere = false;
    while (isUnclear(request) && m_report.clearingReads < mostClearingReads && !isHurried()) {
        const bool mayAsk = m_line.now() >= m_clearing[station].askAgainAt;
        const auto read = mayAsk ? clearingRead(request, isThere) : std::nullopt;
        if (!read)
            awaitClear(request, noLaterThan(allowance.until, m_line.now() + allowance.timeout));
        isThere = read && askToClear(*read, allowance);
        if (!isThere)
            break;
    }
    return !isUnclear(request);
}

bool GuardedExchange::isUnclear(const FRAME_PRO &request) const
{
    return m_owed.couldMislead(request) || m_owed.owesTooMuch(request.frame[stationByte]);
}

/// Sends a read of the guard's own. Each answer settles something, so that asking goes on.
///
/// @return whether it was answered
bool GuardedExchange::askToClear(const FRAME_PRO &read, const Allowance &allowance)
{
    m_heardRefusal = false;
    const Reply reply = exchange(read, allowance);
    if (reply.kind == Reply::Kind::Withheld)
        return false;
    ++m_report.clearingReads;
    if (reply.kind == Reply::Kind::Complete || m_report.verdict.cause == ReplyCause::Exception)
        return true;
    Clearing &clearing = m_clearing[read.frame[stationByte]];
    clearing.refusals += m_heardRefusal ? 1 : 0;
    // One that was seen to answer late may still have all of it before it, and gets no more to do
    // than it can answer. Any other is asked each time, so that it is found when it is back.
    if (clearing.isLate) {
        clearing.pause = std::clamp(2 * clearing.pause, allowance.timeout, longestAnswer());
        clearing.askAgainAt = m_line.now() + clearing.pause;
    }
    return false;
}

/// A read whose reply is told from everything owed; another one each time that a refusal came, as
/// the drive may not know the registers.
///
/// @param isThere  the station answers; one that may be gone is asked the same once more, so that
///                 there is always something left to tell from it
std::optional<FRAME_PRO> GuardedExchange::clearingRead(const FRAME_PRO &request, bool isThere) const
{
    const QVector<FRAME_PRO> reads = readsOfManyLengths(request);
    const auto again = std::find_if(reads.begin(), reads.end(), [&](const FRAME_PRO &read) {
        return !isThere && m_owed.wasLast(read) && !m_owed.couldMislead(read)
            && bytesOf(read) != bytesOf(request);
    });
    if (again != reads.end())
        return *again;
    const auto clearing = m_clearing.find(request.frame[stationByte]);
    const int first = clearing == m_clearing.end() ? 0 : clearing->second.refusals;
    for (int i = 0; i < reads.size(); ++i) {
        const FRAME_PRO &read = reads.at((first + i) % reads.size());
        if (m_owed.isUnmistakable(read))
            return read;
    }
    return std::nullopt;
}

/// Listens until nothing owed can be taken for the reply to this request any more.
void GuardedExchange::awaitClear(const FRAME_PRO &request, Duration until)
{
    while (m_line.isOpen() && m_line.now() < until && isUnclear(request) && !isHurried())
        hear(m_line.receive(m_finder.missing(), nextLook(until)));
}

Duration GuardedExchange::longestAnswer() const
{
    return std::max(mostTimeouts * m_line.settings().responseTimeout, leastLongestAnswer);
}

Reply GuardedExchange::exchange(const FRAME_PRO &request, const Allowance &allowance)
{
    const LineSettings &settings = m_line.settings();
    m_report.verdict = {};
    m_report.echoStripped = false;
    m_report.bytesHeard = 0;
    m_report.junkBytes = 0;
    m_report.foreignFrames = 0;
    m_reply.clear();
    const Duration begun = m_line.now();
    if (!awaitGap(request, allowance))
        return { Reply::Kind::Withheld, {}, true, m_line.now() - begun };
    if (!send(request))
        return lineDown(begun);
    const Duration requestEnd = *m_lastActivity;
    const Duration start = requestEnd - settings.wireTime(request.sendLength);
    const Duration wait = allowance.timeout + settings.wireTime(request.replyLength);
    collect(request, noLaterThan(allowance.until, requestEnd + wait), allowance);
    m_owed.noteGivenUp();
    if (m_report.verdict.cause != ReplyCause::Good && !m_line.isOpen())
        return lineDown(start);
    return finish(request, start);
}

/// @return false when the line is closed or broke
bool GuardedExchange::send(const FRAME_PRO &request)
{
    const Duration end = m_line.now() + m_line.settings().wireTime(request.sendLength);
    // Noted first: what a line that breaks has let through may be answered when it is back.
    m_owed.noteSent(request, m_echo.state() != AdapterEcho::State::Absent, end);
    m_lastActivity = end;
    const bool isSent = m_line.send(bytesOf(request));
    if (!isSent)
        m_owed.noteGivenUp(); // nobody waits for its reply
    return isSent;
}

Reply GuardedExchange::finish(const FRAME_PRO &request, Duration start)
{
    const ReplyVerdict &verdict = m_report.verdict;
    const Duration turnaround = m_line.now() - start;
    const Duration wire = m_line.settings().wireTime(request.sendLength)
        + m_line.settings().wireTime(lengthOf(m_reply) + m_report.junkBytes);
    m_report.answerDelay = std::max(turnaround - wire, Duration { 0 });
    const QByteArray forDriver = verdict.cause == ReplyCause::Good ? m_reply : QByteArray();
    return { kindOf(verdict.cause), forDriver, verdict.canRetry(), turnaround };
}

Duration GuardedExchange::gapBefore(int station) const
{
    const auto extra = m_extraGaps.find(station);
    return m_line.settings().silentGap()
        + (extra == m_extraGaps.end() ? Duration { 0 } : extra->second);
}

/// Where somebody may be in a hurry, waits are looked at once in every gap: the silence that has
/// passed by then is the one that the hurried request needs itself.
Duration GuardedExchange::nextLook(Duration moment) const
{
    return m_isHurried ? std::min(moment, m_line.now() + m_line.settings().silentGap()) : moment;
}

/// What others did on the line before this exchange is the line's to know.
///
/// @return false when somebody is in a hurry before the line was silent
bool GuardedExchange::awaitFirstSilence(Duration gap, Duration limit, bool isUrgent)
{
    while (m_line.isOpen()) {
        const Duration look = isUrgent ? limit : nextLook(limit);
        if (m_line.awaitSilence(gap, look) || look >= limit)
            break;
        if (!isUrgent && isHurried())
            return false;
    }
    m_lastActivity = m_line.now() - gap;
    return true;
}

/// Listens until the line was silent for as long as a frame needs before it.
///
/// @return false when somebody is in a hurry: the request is not to be sent
bool GuardedExchange::awaitGap(const FRAME_PRO &request, const Allowance &allowance)
{
    const LineSettings &settings = m_line.settings();
    const Duration gap = gapBefore(request.frame[stationByte]);
    // A station that chatters without end must not stop the rotation.
    Duration limit = m_line.now() + std::max(settings.responseTimeout, 2 * gap);
    if (allowance.until)
        limit = std::min(limit, *allowance.until - settings.wireTime(request.sendLength));
    hear(m_line.receive(mostHeard, m_line.now()));
    const auto mayWait = [&] { return m_line.isOpen() && (allowance.isUrgent || !isHurried()); };
    if (!m_lastActivity
        && !awaitFirstSilence(gap, std::max(limit, m_line.now()), allowance.isUrgent))
        return false;
    while (mayWait() && m_line.now() < std::min(*m_lastActivity + gap, limit))
        hear(m_line.receive(mostHeard, nextLook(std::min(*m_lastActivity + gap, limit))));
    if (m_line.isOpen() && !mayWait())
        return false;
    m_finder.takeRest(); // the beginning of a frame that nobody ended
    return true;
}

/// Takes in what comes while no reply is awaited.
void GuardedExchange::hear(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    m_lastActivity = m_line.now();
    m_finder.add(bytes);
    while (const auto found = m_finder.next())
        takeFrame(nullptr, *found);
    if (m_finder.rest().size() > mostHeard)
        m_finder.takeRest(); // a line that babbles while nobody asks
}

void GuardedExchange::collect(const FRAME_PRO &request, Duration deadline,
                              const Allowance &allowance)
{
    const LineSettings &settings = m_line.settings();
    while (m_report.bytesHeard < mostHeard) {
        // Behind a damaged reply comes nothing more, most likely: it stays owed all the same.
        const Duration pause = std::max(settings.silentGap(), longestPause);
        const Duration limit =
            seemsDamaged(request) ? std::min(deadline, m_line.now() + pause) : deadline;
        const int missing = m_finder.missing();
        const QByteArray more = m_line.receive(missing, limit);
        m_report.bytesHeard += lengthOf(more);
        m_finder.add(more);
        if (!more.isEmpty())
            m_lastActivity = m_line.now();
        while (const auto found = m_finder.next()) {
            if (takeFrame(&request, *found))
                return;
            deadline =
                noLaterThan(allowance.until, deadline + settings.wireTime(lengthOf(found->frame)));
        }
        if (more.size() < missing)
            break;
    }
    const QByteArray rest = m_finder.rest(); // may go on to come as a late reply
    noteSkipped(rest);
    if (!rest.isEmpty())
        m_reply = rest; // says more than a frame of somebody else's before it
    m_report.verdict = checkReply(request, m_reply);
}

/// Whether what was heard looks like the whole reply, but for its CRC.
bool GuardedExchange::seemsDamaged(const FRAME_PRO &request) const
{
    const bool echoIsOver = m_report.echoStripped || m_echo.state() == AdapterEcho::State::Absent;
    return echoIsOver && m_finder.rest().size() >= request.replyLength
        && beginsLikeReply(request, m_finder.rest());
}

/// Finds out whose a frame is.
///
/// @param request  in hand; null when there is none
/// @return whether it is the reply to the request in hand
bool GuardedExchange::takeFrame(const FRAME_PRO *request, const FrameFinder::Found &found)
{
    if (request)
        noteSkipped(found.skipped);
    const int station = byteAt(found.frame, stationByte);
    const OwedReplies::Claim claim = m_owed.take(found.frame, m_line.now());
    switch (claim.kind) {
    case OwedReplies::Kind::Own:
        m_reply = found.frame;
        m_report.verdict = checkReply(*request, found.frame);
        noteReply(*request, claim);
        noteAnswerTime(station, claim, lengthOf(found.frame));
        m_clearing.erase(station);
        return true;
    case OwedReplies::Kind::Late:
        ++m_report.lateReplies;
        m_report.heardStations.append(station);
        m_clearing[station].isLate = true;
        m_heardRefusal = m_heardRefusal || found.frame.size() == exceptionLength;
        noteAnswerTime(station, claim, lengthOf(found.frame));
        break;
    case OwedReplies::Kind::Echo:
        m_report.echoStripped = m_report.echoStripped || claim.isOfCurrent;
        noteEcho(found.frame);
        break;
    case OwedReplies::Kind::Unowed:
        m_reply = found.frame;
        noteSkipped(found.frame);
        break;
    }
    return false;
}

/// A copy of a single write may be its reply and tells nothing of the adapter.
void GuardedExchange::noteEcho(const QByteArray &copy)
{
    if (byteAt(copy, functionByte) == WriteSingleRegister)
        return;
    if (m_echo.state() == AdapterEcho::State::Absent)
        m_owed.expectEchoes();
    m_echo.noteEcho();
}

/// What a reply says of the adapter.
void GuardedExchange::noteReply(const FRAME_PRO &request, const OwedReplies::Claim &claim)
{
    const bool mayBeCopy = repliesLikeEcho(request);
    const bool isCopy = mayBeCopy && m_report.verdict.cause == ReplyCause::Good;
    if (mayBeCopy && m_report.echoStripped)
        m_echo.noteEcho(); // what was taken away was no reply
    else if (!isCopy && !m_report.echoStripped && claim.isSingle && m_report.junkBytes < leastOfEcho
             && m_report.foreignFrames == 0)
        m_echo.noteNoEcho(); // more bytes before it might have been a damaged echo
}

void GuardedExchange::noteAnswerTime(int station, const OwedReplies::Claim &claim, int length)
{
    if (!claim.asked)
        return;
    const Duration delay = m_line.now() - *claim.asked - m_line.settings().wireTime(length);
    m_answerTimes.noteAnswer(station, std::max(delay, Duration { 0 }), claim.isSingle);
}

/// Sorts what nobody was asked for: a frame of somebody else's, or junk.
void GuardedExchange::noteSkipped(const QByteArray &bytes)
{
    if (!isFrame(bytes)) {
        m_report.junkBytes += lengthOf(bytes);
        return;
    }
    ++m_report.foreignFrames;
    m_report.foreignStation = byteAt(bytes, stationByte);
    m_report.heardStations.append(m_report.foreignStation);
}

} // namespace dx4::host
