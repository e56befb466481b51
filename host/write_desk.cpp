// SPDX-License-Identifier: MIT
// Writes with an outcome: each gets an id and ends exactly once.
#include "host/write_desk.h"

#include "host/length.h"
#include "host/modbus_limits.h"
#include "host/notation.h"
#include "host/verdict_text.h"
#include "register_tables.h"

#include <algorithm>

namespace dx4::host {
namespace {

constexpr int firstId = 1000; // above every tag that a host or the driver itself uses
constexpr int mostWaiting = 512; // beyond, the driver overwrites its last entry
constexpr int functionByte = 1;
constexpr unsigned char readFunction = 3;
constexpr int firstDataByte = 3;

bool isParameter(const WriteWish &wish)
{
    return wish.regType == REG_LIST[0];
}

bool isSameRun(const WriteWish &a, const WriteWish &b)
{
    return a.station == b.station && a.regType == b.regType && a.address == b.address
        && a.values.size() == b.values.size();
}

bool overlaps(const WriteWish &a, const WriteWish &b)
{
    return a.station == b.station && a.regType == b.regType
        && a.address < b.address + lengthOf(b.values) && b.address < a.address + lengthOf(a.values);
}

/// Values in a read reply that was found good.
QVector<quint16> valuesIn(const QByteArray &reply, int count)
{
    QVector<quint16> values;
    for (int i = 0; i < count; ++i) {
        const int high = static_cast<unsigned char>(reply.at(firstDataByte + 2 * i));
        const int low = static_cast<unsigned char>(reply.at(firstDataByte + 2 * i + 1));
        values.append(static_cast<quint16>(high * 256 + low));
    }
    return values;
}

QString notReadBack()
{
    return QStringLiteral("echoed, but could not be read back: %1");
}

Refusal refusalOfCheck(int code)
{
    switch (code) {
    case AddressAccepted:
        return Refusal::None;
    case AddressReadOnly:
        return Refusal::Access;
    default:
        return Refusal::Range;
    }
}

} // namespace

WriteDesk::WriteDesk(Link &link)
    : m_link(link)
    , m_nextId(firstId)
{
}

int WriteDesk::submit(const WriteWish &wish)
{
    const int id = m_nextId++;
    const Refusal refusal = refusalOf(wish);
    if (refusal == Refusal::None)
        replaceComparing(wish);
    const Position entry = m_entries.insert({ id, { wish, Stage::Comparing } }).first;
    if (refusal != Refusal::None)
        finish(entry, { WriteEnd::Refused, refusalText(refusal), refusal });
    else if (m_link.settings().writesStayLocal)
        keepLocal(entry);
    else if (isParameter(wish) && !wish.always)
        readAgain(entry, Stage::Comparing);
    else
        queue(entry);
    return id;
}

Refusal WriteDesk::refusalOf(const WriteWish &wish) const
{
    if (wish.station < 1 || wish.station > lastStation)
        return Refusal::Station;
    const auto *const known = std::find(std::begin(REG_LIST), std::end(REG_LIST), wish.regType);
    if (known == std::end(REG_LIST))
        return Refusal::Access;
    const int most = isParameter(wish) ? m_link.settings().blockSize : 1;
    if (wish.values.isEmpty())
        return Refusal::Count;
    int address = -1;
    const int code = m_link.api().checkAddr(wish.regType, addressText(wish.regType, wish.address),
                                            &address, 0, 1, WriteAccess);
    const Refusal first = refusalOfCheck(code);
    if (first != Refusal::None || address != wish.address)
        return first == Refusal::None ? Refusal::Range : first;
    if (wish.values.size() > most)
        return Refusal::Count;
    const int whole = m_link.api().checkAddr(wish.regType, addressText(wish.regType, wish.address),
                                             &address, 0, lengthOf(wish.values), WriteAccess);
    if (whole != AddressAccepted)
        return refusalOfCheck(whole);
    if (m_link.waitingWrites() >= mostWaiting || pending() >= mostWaiting)
        return Refusal::QueueFull;
    return m_gate ? m_gate(wish) : Refusal::None;
}

/// A write that is still being compared has not reached the driver, which would replace it.
void WriteDesk::replaceComparing(const WriteWish &wish)
{
    QVector<int> replaced;
    for (const auto &[id, entry] : m_entries) {
        if (entry.stage == Stage::Comparing && isSameRun(entry.wish, wish))
            replaced.append(id);
    }
    finishReplaced(replaced);
}

/// The driver shows the values and queues nothing.
void WriteDesk::keepLocal(Position entry)
{
    const WriteWish wish = entry->second.wish;
    const int id = entry->first;
    m_link.write(wish.station, wish.regType, wish.address, wish.values, id);
    const Position kept = m_entries.find(id); // unless a handler of the change ended it
    if (kept != m_entries.end())
        finish(kept, { WriteEnd::Confirmed, QStringLiteral("kept here, nothing is sent") });
}

void WriteDesk::queue(Position entry)
{
    const WriteWish wish = entry->second.wish;
    entry->second.stage = Stage::Queued;
    m_link.write(wish.station, wish.regType, wish.address, wish.values, entry->first);
    sweep();
}

void WriteDesk::readAgain(Position entry, Stage stage)
{
    const WriteWish &wish = entry->second.wish;
    entry->second.stage = stage;
    m_link.addConditionRead(wish.station, wish.regType, wish.address, lengthOf(wish.values),
                            entry->first);
}

void WriteDesk::afterStep(const Cycle &cycle, Cycle::Step step, const ReplyVerdict &verdict)
{
    const FRAME_PRO &request = cycle.request();
    const Position entry = m_entries.find(request.var.varKind);
    const bool isRead = request.frame[functionByte] == readFunction;
    const bool isOurs =
        entry != m_entries.end() && isRead == (entry->second.stage != Stage::Queued);
    const bool wasAsked = cycle.reply().kind != Reply::Kind::NotAsked;
    if (isOurs && !isRead && wasAsked)
        entry->second.sent = true;
    if (isOurs && step == Cycle::Step::Served)
        served(entry, cycle);
    else if (isOurs && step == Cycle::Step::GivenUp)
        givenUp(entry, verdict, wasAsked ? verdictText(verdict) : notAskedText());
    sweep();
}

void WriteDesk::served(Position entry, const Cycle &cycle)
{
    const WriteWish wish = entry->second.wish;
    const Stage stage = entry->second.stage;
    if (stage == Stage::Queued && wish.readBack && isParameter(wish)) {
        readAgain(entry, Stage::ReadingBack);
        return;
    }
    const bool isEqual = stage == Stage::Queued
        || valuesIn(cycle.reply().bytes, lengthOf(wish.values)) == wish.values;
    if (stage == Stage::ReadingBack && !isEqual)
        return finish(
            entry, { WriteEnd::NotTaken, QStringLiteral("echoed, but reads back another value") });
    // What the station holds says nothing while an older write of it still waits.
    if (stage == Stage::Comparing && (!isEqual || overlapsQueued(entry->first, wish)))
        return queue(entry);
    finish(entry,
           { WriteEnd::Confirmed,
             stage == Stage::Comparing ? QStringLiteral("held already, not written")
                                       : QStringLiteral("confirmed") });
}

void WriteDesk::givenUp(Position entry, const ReplyVerdict &verdict, const QString &reason)
{
    const bool isRejected = verdict.cause == ReplyCause::Exception;
    const WriteEnd end = isRejected ? WriteEnd::Rejected : WriteEnd::TimedOut;
    const QString text = entry->second.stage == Stage::ReadingBack ? notReadBack().arg(reason)
        : isRejected ? QStringLiteral("rejected with %1").arg(reason)
                     : reason;
    finish(entry, { end, text, Refusal::None, verdict.exceptionCode });
}

bool WriteDesk::overlapsQueued(int id, const WriteWish &wish) const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [&](const auto &other) {
        return other.first != id && other.second.stage == Stage::Queued
            && overlaps(other.second.wish, wish);
    });
}

void WriteDesk::finish(Position entry, const End &end)
{
    const WriteWish &wish = entry->second.wish;
    const WriteOutcome outcome { entry->first,
                                 end.kind,
                                 end.refusal,
                                 end.exceptionCode,
                                 entry->second.sent,
                                 QStringLiteral("station %1, %2: %3")
                                     .arg(wish.station)
                                     .arg(fullAddress(wish.regType, wish.address), end.text) };
    m_entries.erase(entry);
    if (m_handler)
        m_handler(outcome);
}

void WriteDesk::finishReplaced(const QVector<int> &ids)
{
    for (int id : ids) {
        const Position entry = m_entries.find(id);
        if (entry != m_entries.end())
            finish(entry, { WriteEnd::Replaced, QStringLiteral("replaced by a newer value") });
    }
}

/// Finds what the driver dropped without a word: replaced writes, and reads that went with a
/// failed one.
void WriteDesk::sweep()
{
    QVector<int> replaced;
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        const Stage stage = entry->second.stage;
        if (stage != Stage::Queued && !m_link.hasConditionRead(entry->first))
            readAgain(entry, stage);
        if (stage == Stage::Queued && !m_link.hasWrite(entry->first))
            replaced.append(entry->first);
    }
    finishReplaced(replaced);
}

void WriteDesk::abandon(WriteEnd end, Refusal refusal, const QString &reason)
{
    QVector<int> ids;
    for (const auto &[id, entry] : m_entries)
        ids.append(id);
    for (int id : ids) {
        const Position entry = m_entries.find(id);
        if (entry == m_entries.end())
            continue;
        // The station may have carried out what was sent, and has if it is being read back.
        const QString doubt = entry->second.stage == Stage::ReadingBack
            ? notReadBack()
            : QStringLiteral("sent, but not confirmed: %1");
        if (entry->second.sent)
            finish(entry, { WriteEnd::TimedOut, doubt.arg(reason) });
        else
            finish(entry, { end, QStringLiteral("not sent: %1").arg(reason), refusal });
    }
}

const char *writeEndName(WriteEnd end)
{
    switch (end) {
    case WriteEnd::Confirmed:
        return "confirmed";
    case WriteEnd::Rejected:
        return "rejected";
    case WriteEnd::TimedOut:
        return "timed out";
    case WriteEnd::Replaced:
        return "replaced";
    case WriteEnd::Refused:
        return "refused";
    case WriteEnd::NotTaken:
        return "not taken";
    }
    return "";
}

QString refusalText(Refusal refusal)
{
    switch (refusal) {
    case Refusal::None:
        return QString();
    case Refusal::Station:
        return QStringLiteral("no such station; stations are 1 to 247");
    case Refusal::Access:
        return QStringLiteral("cannot be written; F, CW and FRE can");
    case Refusal::Count:
        return QStringLiteral("wrong number of values; CW and FRE take one, F up to a block");
    case Refusal::Range:
        return QStringLiteral("no such address, or the run leaves its group");
    case Refusal::NotConnected:
        return QStringLiteral("the line is closed or the station does not answer");
    case Refusal::NotAnswered:
        return QStringLiteral("the station has not answered yet");
    case Refusal::QueueFull:
        return QStringLiteral("too many writes are waiting");
    case Refusal::Stopping:
        return QStringLiteral("a stop is under way");
    }
    return QString();
}

} // namespace dx4::host
