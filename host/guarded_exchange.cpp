// SPDX-License-Identifier: MIT
// An exchange that lets only the request's own reply through to the driver.
#include "host/guarded_exchange.h"

#include "host/length.h"
#include "register_tables.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace dx4::host {
namespace {

constexpr int functionByte = 1;
constexpr int exceptionLength = 5;
constexpr int statusWordType = 4; // in the table of types
constexpr int mostHeard = 1024; // bytes; a line that babbles on is no reply
constexpr unsigned char readFunction = 3;
constexpr unsigned char writeOneFunction = 6;
constexpr unsigned char writeManyFunction = 16;
constexpr int writeManyTarget = 6; // bytes up to the count: all that the echo repeats

/// USB adapters hand bytes over in bursts up to 16 ms apart; a shorter pause ends no frame.
constexpr Duration longestPause = std::chrono::milliseconds(20);

QByteArray bytesOf(const FRAME_PRO &request)
{
    return QByteArray(reinterpret_cast<const char *>(request.frame), request.sendLength);
}

/// Whether the reply equals the request, as an adapter's echo does.
bool repliesLikeEcho(const FRAME_PRO &request)
{
    return request.frame[functionByte] == writeOneFunction;
}

/// A read of the status word, which every drive has; the shortest whose reply is no echo.
FRAME_PRO echoProbe(int station)
{
    const int address = REG_OFFSETADDR[statusWordType];
    const std::array<int, 6> payload = {
        station, readFunction, address / 256, address % 256, 0, 1
    };
    FRAME_PRO probe;
    QByteArray bytes;
    for (int byte : payload)
        bytes.append(static_cast<char>(byte));
    const unsigned crc = crcOf(bytes + QByteArray(2, 0));
    bytes.append(static_cast<char>(crc & 0xFFU)).append(static_cast<char>(crc >> 8));
    std::transform(bytes.begin(), bytes.end(), probe.frame,
                   [](char byte) { return static_cast<unsigned char>(byte); });
    probe.sendLength = lengthOf(bytes);
    probe.replyLength = 7;
    probe.replyDataLength = 2;
    probe.var.station = station;
    return probe;
}

bool isSame(const FRAME_PRO &a, const FRAME_PRO &b)
{
    return bytesOf(a) == bytesOf(b);
}

/// Whether a reply to one could pass for a reply to the other.
bool isConfusable(const FRAME_PRO &a, const FRAME_PRO &b)
{
    const bool sameShape = a.frame[0] == b.frame[0]
        && a.frame[functionByte] == b.frame[functionByte] && a.replyLength == b.replyLength;
    if (!sameShape || isSame(a, b))
        return false;
    if (a.frame[functionByte] == writeManyFunction)
        return std::equal(a.frame, a.frame + writeManyTarget, b.frame);
    return a.frame[functionByte] == readFunction;
}

bool isReply(const FRAME_PRO &request, const QByteArray &bytes)
{
    const ReplyCause cause = checkReply(request, bytes).cause;
    return cause == ReplyCause::Good || cause == ReplyCause::Exception;
}

bool beginsLikeReply(const FRAME_PRO &request, const QByteArray &bytes)
{
    return bytes.size() > functionByte
        && static_cast<unsigned char>(bytes.at(0)) == request.frame[0]
        && static_cast<unsigned char>(bytes.at(functionByte)) == request.frame[functionByte];
}

/// Whether the bytes are one frame of any station, whatever it says.
bool isFrame(const QByteArray &bytes)
{
    FRAME_PRO any;
    any.frame[0] = bytes.isEmpty() ? 0 : static_cast<unsigned char>(bytes.at(0));
    any.replyLength = lengthOf(bytes);
    const ReplyCause cause = checkReply(any, bytes).cause;
    return cause != ReplyCause::Silence && cause != ReplyCause::Truncated
        && cause != ReplyCause::BadCrc;
}

/// Bytes to wait for next: up to where an exception ends, then the reply, then one by one.
int missingBytes(const FRAME_PRO &request, const QByteArray &heard)
{
    if (heard.size() < exceptionLength)
        return std::min(exceptionLength, request.replyLength) - lengthOf(heard);
    return std::max(request.replyLength - lengthOf(heard), 1);
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

} // namespace

GuardedExchange::GuardedExchange(Line &line)
    : m_line(line)
    , m_echo(line.settings().echo)
{
}

Reply GuardedExchange::run(const FRAME_PRO &request)
{
    return runWithin(request, m_line.settings().responseTimeout);
}

Reply GuardedExchange::runWithin(const FRAME_PRO &request, Duration timeout)
{
    const bool mayMislead = repliesLikeEcho(request);
    const bool isUrgent = request.var.varKind == safeStopTag;
    int probes = mayMislead && !isUrgent ? learnEcho(request.var.station, timeout) : 0;
    Reply reply = exchange(request, timeout);
    const bool isUnproven = mayMislead && reply.kind == Reply::Kind::Silence;
    if (isUnproven && m_report.echoStripped) {
        m_echo.noteLoneCopy();
        const ExchangeReport report = m_report;
        probes += isUrgent ? learnEcho(request.var.station, timeout) : 0;
        m_report = report;
    }
    m_report.echoProbes = probes;
    return reply;
}

/// Asks the station for something else until the adapter is known, or the station is silent.
///
/// @return reads that were sent
int GuardedExchange::learnEcho(int station, Duration timeout)
{
    int probes = 0;
    while (m_echo.state() == AdapterEcho::State::Unknown && probes < exchangesToBelieve) {
        const Reply reply = exchange(echoProbe(station), timeout);
        ++probes;
        const ReplyCause cause = m_report.verdict.cause;
        const bool isAnswered = cause == ReplyCause::Good || cause == ReplyCause::Exception;
        if (reply.kind == Reply::Kind::LineDown || !isAnswered)
            break;
    }
    return probes;
}

void GuardedExchange::forgetLine()
{
    m_echo = AdapterEcho(m_line.settings().echo);
    m_unanswered.clear();
}

Reply GuardedExchange::exchange(const FRAME_PRO &request, Duration timeout)
{
    const LineSettings &settings = m_line.settings();
    m_report = {};
    m_heard.clear();
    awaitLateReplies(request);
    awaitGap(request);

    const Duration start = m_line.now();
    const Duration requestEnd = start + settings.wireTime(request.sendLength);
    if (!m_line.send(bytesOf(request))) {
        forgetLine();
        return { Reply::Kind::LineDown, {}, true, m_line.now() - start };
    }
    collect(request, requestEnd + timeout + settings.wireTime(request.replyLength));
    if (m_report.verdict.cause != ReplyCause::Good && !m_line.isOpen()) {
        forgetLine();
        return { Reply::Kind::LineDown, {}, true, m_line.now() - start };
    }

    const Duration late =
        requestEnd + timeout + settings.wireTime(request.replyLength) + settings.responseTimeout;
    const ReplyCause cause = m_report.verdict.cause;
    if (cause == ReplyCause::Good || cause == ReplyCause::Exception)
        prolongUnanswered(request, late);
    else if (!isDamagedReply(cause, request))
        noteUnanswered(request, late);
    return finish(request, start);
}

/// A damaged reply is still this request's own, so that no other is to be expected. A whole one of
/// the same shape may be a late answer to another request.
bool GuardedExchange::isDamagedReply(ReplyCause cause, const FRAME_PRO &request) const
{
    const bool isDamaged = cause == ReplyCause::BadCrc || cause == ReplyCause::Truncated;
    return isDamaged && beginsLikeReply(request, m_heard);
}

Reply GuardedExchange::finish(const FRAME_PRO &request, Duration start)
{
    const ReplyVerdict &verdict = m_report.verdict;
    const Duration turnaround = m_line.now() - start;
    const Duration wire = m_line.settings().wireTime(request.sendLength)
        + m_line.settings().wireTime(lengthOf(m_heard) + m_report.junkBytes);
    m_report.answerDelay = std::max(turnaround - wire, Duration { 0 });
    const QByteArray forDriver = verdict.cause == ReplyCause::Good ? m_heard : QByteArray();
    return { kindOf(verdict.cause), forDriver, verdict.canRetry(), turnaround };
}

/// Lets replies pass by that are overdue and could be taken for this request's.
void GuardedExchange::awaitLateReplies(const FRAME_PRO &request)
{
    for (Unanswered &entry : m_unanswered) {
        if (!isConfusable(entry.request, request))
            continue;
        while (entry.replies > 0 && m_line.isOpen() && m_line.now() < entry.until) {
            const QByteArray late = m_line.receive(entry.request.replyLength, entry.until);
            if (!late.isEmpty())
                ++m_report.lateReplies;
            --entry.replies;
        }
    }
    const auto isOver = [this](const Unanswered &entry) {
        return entry.replies <= 0 || m_line.now() >= entry.until;
    };
    m_unanswered.erase(std::remove_if(m_unanswered.begin(), m_unanswered.end(), isOver),
                       m_unanswered.end());
}

void GuardedExchange::awaitGap(const FRAME_PRO &request)
{
    const LineSettings &settings = m_line.settings();
    const auto extra = m_extraGaps.find(request.frame[0]);
    const Duration gap =
        settings.silentGap() + (extra == m_extraGaps.end() ? Duration { 0 } : extra->second);
    // A station that chatters without end must not stop the rotation.
    m_line.awaitSilence(gap, m_line.now() + std::max(settings.responseTimeout, 2 * gap));
    m_line.discardInput();
}

void GuardedExchange::collect(const FRAME_PRO &request, Duration deadline)
{
    bool found = false;
    while (!found && m_heard.size() < mostHeard) {
        // Behind a damaged reply comes nothing more; behind junk the reply may still come.
        const bool isWhole =
            m_heard.size() >= request.replyLength && beginsLikeReply(request, m_heard);
        const Duration pause = std::max(m_line.settings().silentGap(), longestPause);
        const Duration limit = isWhole ? std::min(deadline, m_line.now() + pause) : deadline;
        const int missing = missingBytes(request, m_heard);
        const QByteArray more = m_line.receive(missing, limit);
        m_heard += more;
        m_report.bytesHeard += lengthOf(more);
        if (stripEcho(request)) {
            deadline += m_line.settings().wireTime(request.sendLength);
            continue;
        }
        if (m_heard.size() > request.replyLength)
            deadline += m_line.settings().wireTime(lengthOf(more));
        found = findReply(request);
        if (more.size() < missing)
            break;
    }
    if (found)
        return;
    m_report.verdict = checkReply(request, m_heard);
    noteSkipped(m_heard);
}

/// Looks for the reply at every place of what was heard, and cuts it out.
bool GuardedExchange::findReply(const FRAME_PRO &request)
{
    for (int start = 0; start + exceptionLength <= m_heard.size(); ++start) {
        for (int length : { exceptionLength, request.replyLength }) {
            const QByteArray candidate = m_heard.mid(start, length);
            if (static_cast<unsigned char>(candidate.at(0)) != request.frame[0]
                || candidate.size() != length || !isReply(request, candidate))
                continue;
            noteSkipped(m_heard.left(start));
            m_heard = candidate;
            m_report.verdict = checkReply(request, candidate);
            noteEchoOf(request, start);
            return true;
        }
    }
    return false;
}

/// Takes the adapter's copy of the request away, where it cannot be the reply itself.
///
/// @return whether something was taken
bool GuardedExchange::stripEcho(const FRAME_PRO &request)
{
    const bool mayBeReply = repliesLikeEcho(request);
    if (m_report.echoStripped || (mayBeReply && m_echo.state() == AdapterEcho::State::Absent))
        return false;
    // Behind junk too where it could pass for the reply; elsewhere it does no harm there.
    const QByteArray echo = bytesOf(request);
    const int start = mayBeReply ? static_cast<int>(m_heard.indexOf(echo)) : 0;
    if (start < 0 || m_heard.mid(start, request.sendLength) != echo)
        return false;
    noteSkipped(m_heard.left(start));
    m_heard.remove(0, start + request.sendLength);
    m_report.echoStripped = true;
    if (!mayBeReply)
        m_echo.noteEcho();
    return true;
}

/// What a reply says of the adapter, with so many bytes before it.
void GuardedExchange::noteEchoOf(const FRAME_PRO &request, int skipped)
{
    const bool mayMislead = repliesLikeEcho(request);
    const bool isCopy = mayMislead && m_report.verdict.cause == ReplyCause::Good;
    if (mayMislead && m_report.echoStripped)
        m_echo.noteEcho(); // what was taken away was no reply
    else if (!isCopy && !m_report.echoStripped && skipped == 0)
        m_echo.noteNoEcho(); // bytes before it might have been a damaged echo
}

/// Sorts what was not the reply: a frame of somebody else's, a late one, or junk.
void GuardedExchange::noteSkipped(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    if (!isFrame(bytes)) {
        m_report.junkBytes += lengthOf(bytes);
        return;
    }
    ++m_report.foreignFrames;
    m_report.foreignStation = static_cast<unsigned char>(bytes.at(0));
    for (Unanswered &entry : m_unanswered) {
        if (entry.replies > 0 && isReply(entry.request, bytes)) {
            --entry.replies;
            ++m_report.lateReplies;
            return;
        }
    }
}

void GuardedExchange::noteUnanswered(const FRAME_PRO &request, Duration until)
{
    for (Unanswered &entry : m_unanswered) {
        if (!isSame(entry.request, request))
            continue;
        ++entry.replies;
        entry.until = until;
        return;
    }
    m_unanswered.push_back({ request, 1, until });
}

/// The reply that came may have been that of an earlier try; then this one's is still to come.
void GuardedExchange::prolongUnanswered(const FRAME_PRO &request, Duration until)
{
    for (Unanswered &entry : m_unanswered) {
        if (isSame(entry.request, request))
            entry.until = until;
    }
}

} // namespace dx4::host
