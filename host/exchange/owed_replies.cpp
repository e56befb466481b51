// SPDX-License-Identifier: MIT
// What the stations of a line, and its adapter, may still bring.
#include "host/exchange/owed_replies.h"

#include "host/frames/modbus_frame.h"

#include <algorithm>
#include <iterator>

namespace dx4::host {
namespace {

constexpr std::size_t mostEntries = 64; // of a station that does not answer
constexpr std::size_t mostTimes = 16; // of equal requests; beyond, only their number is kept

bool beginsEqual(const QByteArray &a, const QByteArray &b)
{
    return a.left(echoedBytes) == b.left(echoedBytes);
}

/// Whether a reply to one request would pass for a reply to the other.
bool looksAlike(const QByteArray &a, int lengthOfA, const QByteArray &b, int lengthOfB)
{
    if (byteAt(a, functionByte) != byteAt(b, functionByte) || lengthOfA != lengthOfB)
        return false;
    return byteAt(a, functionByte) == ReadHoldingRegisters || beginsEqual(a, b);
}

} // namespace

void OwedReplies::noteSent(const FRAME_PRO &request, bool mayEcho, Duration end)
{
    Entries &entries = m_stations[request.frame[stationByte]];
    const QByteArray bytes = bytesOf(request);
    const bool isAgain =
        !entries.empty() && isSameRequest(entries.back(), bytes, request.var.varKind);
    ++m_order;
    if (isAgain) {
        ++entries.back().count;
    } else {
        Entry entry;
        entry.request = bytes;
        entry.replyLength = request.replyLength;
        entry.dataLength = request.replyDataLength;
        entry.tag = request.var.varKind;
        entry.isWrite = request.frame[functionByte] != ReadHoldingRegisters;
        entry.firstOrder = m_order;
        entries.push_back(entry);
    }
    Entry &entry = entries.back();
    entry.lastOrder = m_order;
    entry.lastEnd = end;
    entry.echoes += mayEcho ? 1 : 0;
    if (entry.ends.size() < mostTimes)
        entry.ends.push_back(end);
    m_current = m_order;
}

/// Tries of one write have its tag; another write of the same value is another one. Reads have no
/// effect, so that one is as good as the next.
bool OwedReplies::isSameRequest(const Entry &entry, const QByteArray &request, int tag)
{
    return entry.request == request && (!entry.isWrite || entry.tag == tag);
}

bool OwedReplies::answers(const Entry &entry, const QByteArray &frame)
{
    const int function = byteAt(entry.request, functionByte);
    if (entry.replyLength == 0)
        return false;
    if (byteAt(frame, functionByte) == (function | exceptionBit))
        return frame.size() == exceptionLength;
    if (byteAt(frame, functionByte) != function || frame.size() != entry.replyLength)
        return false;
    return function == ReadHoldingRegisters ? byteAt(frame, byteCountByte) == entry.dataLength
                                            : beginsEqual(frame, entry.request);
}

/// Whether a reply to this entry says what one to the request in hand would: it is the same
/// request, and nothing was written to the station since.
bool OwedReplies::meansTheSame(const Entries &entries, std::size_t position) const
{
    const Entry &current = entries.back();
    const Entry &entry = entries[position];
    if (&entry == &current)
        return true;
    const auto next = entries.begin() + static_cast<std::ptrdiff_t>(position) + 1;
    return isSameRequest(entry, current.request, current.tag)
        && std::none_of(next, std::prev(entries.end()),
                        [](const Entry &between) { return between.isWrite; });
}

OwedReplies::Claim OwedReplies::take(const QByteArray &frame, Duration now)
{
    if (const std::optional<Claim> echo = takeEcho(frame))
        return *echo;
    const auto found = m_stations.find(byteAt(frame, stationByte));
    if (found == m_stations.end())
        return {};
    Entries &entries = found->second;
    std::optional<std::size_t> earliest;
    std::int64_t fitting = 0;
    bool isOwn = !entries.empty() && isCurrent(entries.back()) && answers(entries.back(), frame);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!answers(entries[i], frame))
            continue;
        earliest = earliest.value_or(i);
        fitting += entries[i].count;
        isOwn = isOwn && meansTheSame(entries, i);
    }
    if (!earliest)
        return {};
    Claim claim;
    claim.kind = isOwn ? Kind::Own : Kind::Late;
    claim.isSingle = fitting == 1;
    if (!entries[*earliest].ends.empty())
        claim.asked = entries[*earliest].ends.front();
    settle(found, *earliest, now);
    return claim;
}

/// The echo of anything but a single write differs from every reply. One of a single write is taken
/// for the reply only when none of its copies can be an echo any more.
std::optional<OwedReplies::Claim> OwedReplies::takeEcho(const QByteArray &frame)
{
    const auto found = m_stations.find(byteAt(frame, stationByte));
    if (found == m_stations.end())
        return std::nullopt;
    const bool isLikeReply = byteAt(frame, functionByte) == WriteSingleRegister;
    for (Entry &entry : found->second) {
        if (entry.request != frame || (isLikeReply && entry.echoes == 0))
            continue;
        Claim claim;
        claim.kind = Kind::Echo;
        claim.isOfCurrent = isCurrent(entry);
        claim.isSingle = entry.count == 1;
        entry.echoes = std::max<std::int64_t>(entry.echoes - 1, 0);
        settleEchoes(entry.firstOrder);
        return claim;
    }
    return std::nullopt;
}

/// The oldest request of an entry was answered, or a later one like it. What its station was asked
/// before cannot be answered any more.
void OwedReplies::settle(Stations::iterator station, std::size_t position, Duration now)
{
    m_busyUntil[station->first] = now;
    Entries &entries = station->second;
    entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(position));
    Entry &entry = entries.front();
    const std::uint64_t order = entry.firstOrder;
    --entry.count;
    entry.echoes = std::min(entry.echoes, entry.count);
    if (!entry.ends.empty())
        entry.ends.erase(entry.ends.begin());
    if (entry.count == 0)
        entries.erase(entries.begin());
    settleEchoes(order);
}

/// No echo comes of what went out before this, to whichever station.
void OwedReplies::settleEchoes(std::uint64_t before)
{
    for (auto &[station, entries] : m_stations) {
        for (Entry &entry : entries)
            entry.echoes = entry.lastOrder < before ? 0 : entry.echoes;
    }
}

void OwedReplies::expectEchoes()
{
    for (auto &[station, entries] : m_stations) {
        for (Entry &entry : entries)
            entry.echoes = entry.count;
    }
}

bool OwedReplies::couldMislead(const FRAME_PRO &request) const
{
    const auto found = m_stations.find(request.frame[stationByte]);
    if (found == m_stations.end())
        return false;
    const Entries &entries = found->second;
    const QByteArray bytes = bytesOf(request);
    bool writtenSince = false;
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        const bool isSame = isSameRequest(*entry, bytes, request.var.varKind);
        const bool isOther = !isSame || writtenSince;
        if (isOther && looksAlike(entry->request, entry->replyLength, bytes, request.replyLength))
            return true;
        writtenSince = writtenSince || (entry->isWrite && !isSame);
    }
    return false;
}

bool OwedReplies::owesTooMuch(int station) const
{
    const auto found = m_stations.find(station);
    return found != m_stations.end() && found->second.size() >= mostEntries;
}

bool OwedReplies::isUnmistakable(const FRAME_PRO &read) const
{
    const auto found = m_stations.find(read.frame[stationByte]);
    const QByteArray bytes = bytesOf(read);
    return found == m_stations.end()
        || std::none_of(found->second.begin(), found->second.end(), [&](const Entry &entry) {
               return looksAlike(entry.request, entry.replyLength, bytes, read.replyLength);
           });
}

bool OwedReplies::wasLast(const FRAME_PRO &read) const
{
    const auto found = m_stations.find(read.frame[stationByte]);
    return found != m_stations.end() && !found->second.empty()
        && found->second.back().request == bytesOf(read);
}

QVector<int> OwedReplies::lengths(int station, int function) const
{
    QVector<int> lengths;
    const auto found = m_stations.find(station);
    if (found == m_stations.end())
        return lengths;
    const auto add = [&lengths](int length) {
        if (length > 0 && !lengths.contains(length))
            lengths.append(length);
    };
    for (const Entry &entry : found->second) {
        const int asked = byteAt(entry.request, functionByte);
        if (function == (asked | exceptionBit))
            add(exceptionLength);
        if (function != asked)
            continue;
        add(entry.replyLength);
        add(lengthOf(entry.request));
    }
    std::sort(lengths.begin(), lengths.end());
    return lengths;
}

void OwedReplies::expire(int station, Duration now, Duration longest)
{
    const auto found = m_stations.find(station);
    if (found == m_stations.end())
        return;
    Entries &entries = found->second;
    Duration &busyUntil = m_busyUntil[station];
    auto open = entries.begin();
    for (; open != entries.end(); ++open) {
        const Duration over = std::max(busyUntil, open->lastEnd) + open->count * longest;
        if (over > now)
            break;
        busyUntil = over;
    }
    entries.erase(entries.begin(), open);
}

} // namespace dx4::host
